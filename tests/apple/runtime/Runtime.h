#pragma once

#include <map>
#include <string>

namespace vantry::objc {

// A small Objective-C runtime for tests: what clang calls when it compiles for `-fobjc-runtime=macosx` with ARC, on
// x86_64 Linux. Mistakes that the real one may survive (a message to a freed object, an object that is autoreleased
// where no pool is) end the process with their name. `@throw`, `@catch`, `@synchronized`, `+load` and `+initialize` are
// not there; C++ exceptions pass through.

/// Ends the process and says why.
[[noreturn]] void die(const std::string& reason);

/// A new object, zeroed and with its C++ members made.
[[nodiscard]] void* allocate(void* cls);
void deallocate(void* object);

/// Null when instances of `cls` do not understand the selector. Give a metaclass for class methods.
[[nodiscard]] void* findMethod(const void* cls, const char* selector);
[[nodiscard]] void* superclassOf(const void* cls);
[[nodiscard]] const char* className(const void* cls);

/// From here on, a message to `cls`, its subclasses and their objects from any thread but the main one ends the
/// process.
void restrictToMainThread(const void* cls);
[[nodiscard]] bool isMainThread();

/// How many objects there are, by class. Classes without any are left out.
[[nodiscard]] std::map<std::string, long> liveObjects();

} // namespace vantry::objc
