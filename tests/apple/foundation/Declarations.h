#pragma once

// Read before everything else of a double. A property has no getter or setter unless the double writes or synthesizes
// it, so that nothing answers in silence. The declarations are those that the macOS sources are compiled with.
#pragma clang attribute push(__attribute__((objc_requires_property_definitions)), apply_to = objc_interface)
#include <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>
#pragma clang attribute pop

// A double implements a part of what is declared.
#pragma clang diagnostic ignored "-Wincomplete-implementation"
#pragma clang diagnostic ignored "-Wprotocol"
#pragma clang diagnostic ignored "-Wobjc-property-implementation"
#pragma clang diagnostic ignored "-Wobjc-protocol-property-synthesis"
#pragma clang diagnostic ignored "-Wobjc-designated-initializers"
#pragma clang diagnostic ignored "-Wunused-parameter"
// Its threads and callers are those of a test.
#pragma clang diagnostic ignored "-Watomic-property-with-user-defined-accessor"
#pragma clang diagnostic ignored "-Wcast-function-type-mismatch"
#pragma clang diagnostic ignored "-Wdeprecated-objc-isa-usage"
#pragma clang diagnostic ignored "-Wmismatched-parameter-types"
#pragma clang diagnostic ignored "-Wmissing-noescape"
#pragma clang diagnostic ignored "-Wnonnull"
#pragma clang diagnostic ignored "-Wshadow-ivar"

/// A method that only tells something.
#define ANSWERS(type, name, value)                                                                                     \
    -(type)name {                                                                                                      \
        return value;                                                                                                  \
    }

/// The one object that a class has for everybody.
#define SHARED(type, name)                                                                                             \
    +(type*)name {                                                                                                     \
        static type* const shared = [[type alloc] init];                                                               \
        return shared;                                                                                                 \
    }
