#include "tests/apple/runtime/Runtime.h"

#include <gtest/gtest.h>

#include <objc/NSObject.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Pair {
    double first;
    double second;
};
struct Frame {
    Pair origin;
    Pair size;
};

using Log = std::vector<std::string>;

} // namespace

@interface Animal : NSObject
- (int)sumOf:(int)a and:(long)b and:(short)c and:(int)d and:(int)e and:(int)f and:(int)g;
- (double)weightOf:(float)a times:(double)b plus:(int)c;
- (Pair)pair;
- (Frame)frameFor:(Pair)origin;
- (int)legs;
- (void)fail;
+ (int)kinds;
@end

@interface Bird : Animal
@property(nonatomic, copy) int (^song)(int);
@property(nonatomic, strong) Animal* prey;
@property(nonatomic, weak) Animal* friendBird;
@property(nonatomic) Pair wings;
- (void)useNames:(const Log&)names log:(Log&)log;
- (const Log&)names;
@end

@implementation Bird {
    Log _names;
    Log* _log;
}

- (void)useNames:(const Log&)names log:(Log&)log {
    _names = names;
    _log = &log;
}

- (const Log&)names {
    return _names;
}

- (int)legs {
    return [super legs] - 2;
}

- (Frame)frameFor:(Pair)origin {
    Frame frame = [super frameFor:origin];
    frame.size.first += 1;
    return frame;
}

+ (int)kinds {
    return [super kinds] + 1;
}

- (void)dealloc {
    if (_log)
        _log->push_back("gone");
}

@end

// Below its subclass, which the compiler lays out without knowing these variables.
@implementation Animal {
    long _first;
    long _second;
    long _third;
}

- (instancetype)init {
    if ((self = [super init]))
        _first = _second = _third = 7;
    return self;
}

- (int)sumOf:(int)a and:(long)b and:(short)c and:(int)d and:(int)e and:(int)f and:(int)g {
    return a + static_cast<int>(b) + c + d + e + f + g;
}

- (double)weightOf:(float)a times:(double)b plus:(int)c {
    return a * b + c;
}

- (Pair)pair {
    return {1.5, 2.5};
}

- (Frame)frameFor:(Pair)origin {
    return {origin, {static_cast<double>(_first), static_cast<double>(_third)}};
}

- (int)legs {
    return 4;
}

- (void)fail {
    throw std::runtime_error("tired");
}

+ (int)kinds {
    return 1;
}

@end

@interface Animal (Sounds)
- (int)volume;
@end

@implementation Animal (Sounds)

- (int)volume {
    return 11 + [self legs];
}

@end

@interface Animal (NotThere)
- (void)fly;
@end

@interface Indoors : NSObject
- (int)temperature;
@end

@implementation Indoors

- (int)temperature {
    return 21;
}

@end

namespace vantry {

namespace {

long living(const char* cls) {
    const auto all = objc::liveObjects();
    const auto found = all.find(cls);
    return found == all.end() ? 0 : found->second;
}

} // namespace

TEST(ObjcRuntime, ArgumentsAndResultsOfEveryKindArrive) {
    @autoreleasepool {
        Animal* animal = [[Animal alloc] init];
        EXPECT_EQ(([animal sumOf:1 and:20 and:300 and:4000 and:50000 and:600000 and:7000000]), 7654321);
        EXPECT_DOUBLE_EQ(([animal weightOf:1.5F times:4 plus:3]), 9);
        EXPECT_DOUBLE_EQ([animal pair].second, 2.5);
        EXPECT_DOUBLE_EQ(([animal frameFor:{3, 4}]).origin.second, 4);
        EXPECT_EQ([Animal kinds], 1);
    }
}

TEST(ObjcRuntime, AMessageToNilAnswersWithZeros) {
    Animal* nobody = nil;
    EXPECT_EQ([nobody legs], 0);
    EXPECT_DOUBLE_EQ([nobody pair].second, 0);
    EXPECT_DOUBLE_EQ(([nobody frameFor:{3, 4}]).size.first, 0);
    EXPECT_DOUBLE_EQ(([nobody weightOf:1 times:2 plus:3]), 0);
}

TEST(ObjcRuntime, SuperAndCategoriesAreFound) {
    @autoreleasepool {
        Bird* bird = [[Bird alloc] init];
        EXPECT_EQ([bird legs], 2);
        EXPECT_EQ([bird volume], 13) << "inherited from a category";
        EXPECT_DOUBLE_EQ(([bird frameFor:{3, 4}]).size.first, 8);
        EXPECT_EQ([Bird kinds], 2);
        EXPECT_TRUE([bird isKindOfClass:[Animal class]]);
        EXPECT_FALSE([[[Animal alloc] init] isKindOfClass:[Bird class]]);
        EXPECT_TRUE([bird respondsToSelector:@selector(volume)]);
        EXPECT_FALSE([bird respondsToSelector:@selector(fly)]);
    }
}

TEST(ObjcRuntime, VariablesThatASuperclassHidesAreNotOverwritten) {
    @autoreleasepool {
        Log log;
        Bird* bird = [[Bird alloc] init];
        bird.wings = {8, 9};
        [bird useNames:{"a name that is too long to be kept inside the string", "b"} log:log];
        EXPECT_EQ([bird names].size(), 2U);
        EXPECT_DOUBLE_EQ(([bird frameFor:{0, 0}]).size.second, 7);
        EXPECT_DOUBLE_EQ(bird.wings.second, 9);
    }
}

TEST(ObjcRuntime, AnObjectEndsWithItsLastReference) {
    const long before = living("Bird");
    Log log;
    @autoreleasepool {
        Bird* bird = [[Bird alloc] init];
        [bird useNames:{} log:log];
        Bird* other = [[Bird alloc] init];
        other.prey = bird;
        bird = nil;
        EXPECT_EQ(log, Log{});
        other.prey = nil;
        EXPECT_EQ(log, Log{"gone"});
        EXPECT_EQ(living("Bird"), before + 1);
    }
    EXPECT_EQ(living("Bird"), before);
}

TEST(ObjcRuntime, AWeakReferenceIsNilOnceTheObjectIsGone) {
    @autoreleasepool {
        Bird* bird = [[Bird alloc] init];
        @autoreleasepool {
            Animal* companion = [[Animal alloc] init];
            bird.friendBird = companion;
            EXPECT_EQ(bird.friendBird, companion);
        }
        EXPECT_EQ(bird.friendBird, nil);
    }
}

TEST(ObjcRuntime, AnAutoreleasedObjectLivesAsLongAsItsPool) {
    const long before = living("Animal");
    @autoreleasepool {
        __unsafe_unretained Animal* animal = nil;
        @autoreleasepool {
            __autoreleasing Animal* kept = [[Animal alloc] init];
            animal = kept;
            EXPECT_EQ([animal legs], 4);
        }
        EXPECT_EQ(living("Animal"), before);
    }
}

TEST(ObjcRuntime, ABlockKeepsWhatItNames) {
    const long before = living("Animal");
    @autoreleasepool {
        Bird* bird = [[Bird alloc] init];
        {
            Animal* prey = [[Animal alloc] init];
            __block int calls = 0;
            bird.song = ^(int times) {
                ++calls;
                return [prey legs] * times;
            };
            EXPECT_EQ(bird.song(3), 12);
            EXPECT_EQ(calls, 1);
        }
        EXPECT_EQ(living("Animal"), before + 1);
        bird.song = nil;
        EXPECT_EQ(living("Animal"), before);
    }
}

TEST(ObjcRuntime, AnExceptionPassesThroughMessagesAndReleasesWhatItPasses) {
    const long before = living("Animal");
    @autoreleasepool {
        try {
            Animal* animal = [[Animal alloc] init];
            [animal fail];
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "tired");
        }
    }
    EXPECT_EQ(living("Animal"), before);
}

TEST(ObjcRuntimeDeathTest, MistakesEndTheProcessWithTheirName) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(
        @autoreleasepool { [[[Animal alloc] init] fly]; }, "-\\[Animal fly\\]: unrecognized selector");
    EXPECT_DEATH(
        @autoreleasepool { [(id)[Animal class] legs]; }, "\\+\\[Animal legs\\]: unrecognized selector");
    EXPECT_DEATH(
        {
            __autoreleasing Animal* animal = [[Animal alloc] init];
            [animal legs];
        },
        "autoreleased without a pool");
    EXPECT_DEATH(
        @autoreleasepool {
            objc::restrictToMainThread((__bridge void*)[Indoors class]);
            Indoors* room = [[Indoors alloc] init];
            std::thread([room] { [room temperature]; }).join();
        },
        "-\\[Indoors temperature\\]: not on the main thread");
}

} // namespace vantry
