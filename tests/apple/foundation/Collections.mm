// Arrays and dictionaries. They are as their documentation says, and end the process where the real ones raise an
// exception, which nothing of ours catches.

#include "tests/apple/runtime/Runtime.h"

#include <algorithm>
#include <utility>
#include <vector>

using namespace vantry;

@interface NSArray () {
@public
    std::vector<id> _objects;
}
@end

@interface NSDictionary () {
@public
    std::vector<std::pair<id, id>> _entries;
}
@end

namespace {

id checked(id object) { return object ? object : (objc::die("nil into a collection"), nil); }

} // namespace

@implementation NSArray

+ (instancetype)array {
    return [[self alloc] init];
}

+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)count {
    NSArray* array = [[self alloc] init];
    for (NSUInteger index = 0; index < count; ++index)
        array->_objects.push_back(checked(objects[index]));
    return array;
}

ANSWERS(NSUInteger, count, _objects.size())

- (id)objectAtIndex:(NSUInteger)index {
    return index < _objects.size() ? _objects[index] : (objc::die("beyond the end of an array"), nil);
}

- (id)objectAtIndexedSubscript:(NSUInteger)index {
    return [self objectAtIndex:index];
}

ANSWERS(id, firstObject, _objects.empty() ? nil : _objects.front())
ANSWERS(id, lastObject, _objects.empty() ? nil : _objects.back())

- (BOOL)containsObject:(id)object {
    return std::ranges::any_of(_objects, [object](id each) { return [each isEqual:object]; });
}

- (NSUInteger)indexOfObject:(id)object {
    const auto found = std::ranges::find_if(_objects, [object](id each) { return [each isEqual:object]; });
    return found == _objects.end() ? NSNotFound : static_cast<NSUInteger>(found - _objects.begin());
}

- (BOOL)isEqualToArray:(NSArray*)other {
    return other && std::ranges::equal(_objects, other->_objects, [](id one, id two) { return [one isEqual:two]; });
}

- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count {
    if (state->state != 0)
        return 0;
    state->state = 1;
    state->itemsPtr = reinterpret_cast<__unsafe_unretained id*>(_objects.data());
    state->mutationsPtr = reinterpret_cast<unsigned long*>(&_objects); // its begin moves when it grows
    return _objects.size();
}

@end

@implementation NSMutableArray

+ (instancetype)arrayWithCapacity:(NSUInteger)capacity {
    return [[self alloc] init];
}

- (void)addObject:(id)object {
    _objects.push_back(checked(object));
}

@end

@implementation NSDictionary

+ (instancetype)dictionary {
    return [[self alloc] init];
}

+ (instancetype)dictionaryWithObjects:(const id[])objects forKeys:(const id[])keys count:(NSUInteger)count {
    NSDictionary* dictionary = [[self alloc] init];
    for (NSUInteger index = 0; index < count; ++index)
        dictionary->_entries.emplace_back(checked(keys[index]), checked(objects[index]));
    return dictionary;
}

- (id)objectForKey:(id)key {
    const auto found = std::ranges::find_if(_entries, [key](const auto& entry) { return [entry.first isEqual:key]; });
    return found == _entries.end() ? nil : found->second;
}

- (id)objectForKeyedSubscript:(id)key {
    return [self objectForKey:key];
}

@end

@implementation NSMutableDictionary

- (void)setObject:(id)object forKey:(id)key {
    [self removeObjectForKey:key];
    _entries.emplace_back(checked(key), checked(object));
}

- (void)removeObjectForKey:(id)key {
    std::erase_if(_entries, [key](const auto& entry) { return [entry.first isEqual:key]; });
}

@end

// What the compiler makes of @[].
__attribute__((visibility("default"))) void* emptyArray __asm__("__NSArray0__");
__attribute__((constructor)) static void makeEmptyArray() {
    emptyArray = (__bridge_retained void*)[[NSArray alloc] init];
}
