// NSObject. What it lacks ends the process with its name, here and in the other doubles.

#include "tests/apple/runtime/Runtime.h"

#include <objc/NSObject.h>

using namespace vantry;

@implementation NSObject

+ (instancetype)alloc {
    return (__bridge_transfer id)objc::allocate((__bridge void*)self);
}

- (instancetype)init {
    return self;
}

- (void)dealloc {
    objc::deallocate((__bridge void*)self);
}

+ (Class)class {
    return self;
}

- (Class)class {
    return isa;
}

- (BOOL)isEqual:(id)object {
    return self == object;
}

- (BOOL)isKindOfClass:(Class)cls {
    for (const void* each = (__bridge void*)isa; each; each = objc::superclassOf(each))
        if (each == (__bridge void*)cls)
            return YES;
    return NO;
}

- (BOOL)isMemberOfClass:(Class)cls {
    return isa == cls;
}

- (BOOL)respondsToSelector:(SEL)selector {
    return objc::findMethod((__bridge void*)isa, sel_getName(selector)) != nullptr;
}

@end
