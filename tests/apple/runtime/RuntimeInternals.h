#pragma once

#include "tests/apple/runtime/Runtime.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>

namespace vantry::objc {

// What the compiler writes into the object files; see "Objective-C Runtime" and the sources of clang's CGObjCMac.cpp.

struct Method {
    const char* name;
    const char* types;
    void* implementation;
};
struct Ivar {
    std::int32_t* offset;
    const char* name;
    const char* type;
    std::uint32_t alignment;
    std::uint32_t size;
};
template <class Entry>
struct List {
    std::uint32_t entrySize;
    std::uint32_t count;

    Entry* begin() { return reinterpret_cast<Entry*>(this + 1); }
    Entry* end() { return begin() + count; }
};

/// What the runtime knows about a class: the methods with the inherited ones, and where the own ones begin.
struct ClassInfo {
    std::unordered_map<const char*, void*> methods;
    void* construct = nullptr; ///< of the class's own C++ members
    void* destruct = nullptr;
    bool mainThreadOnly = false;
};

struct ReadOnly {
    std::uint32_t flags;
    std::uint32_t instanceStart;
    std::uint32_t instanceSize;
    std::uint32_t reserved;
    const void* layout;
    const char* name;
    List<Method>* methods;
    const void* protocols;
    List<Ivar>* ivars;
};
struct ClassData {
    ClassData* isa;
    ClassData* superclass;
    void* cache;
    ClassInfo* info; ///< a table of functions to the compiler, which leaves it empty
    ReadOnly* readOnly;
};
struct Category {
    const char* name;
    ClassData* cls;
    List<Method>* instanceMethods;
    List<Method>* classMethods;
};
struct Object {
    ClassData* isa;
};

constexpr std::uint32_t metaclassFlag = 1;
constexpr long deallocating = 1L << 40; ///< far above any number of references

/// In front of every object.
struct alignas(16) Header {
    std::atomic<long> references;
};

/// Everything that threads share, except the number of references.
struct Shared {
    std::mutex lock;
    std::set<std::string> selectorNames;
    std::unordered_map<std::string, ClassData*> classes;
    std::unordered_map<Object*, std::set<Object**>> weakReferences;
    std::unordered_map<ClassData*, long> liveObjects;
};

[[nodiscard]] Shared& shared();

/// The one selector of this name.
[[nodiscard]] const char* intern(const char* name);

struct Selectors {
    const char* alloc = intern("alloc");
    const char* init = intern("init");
    const char* copy = intern("copy");
    const char* dealloc = intern("dealloc");
};
extern const Selectors selectors;

/// The class of an object that is gone.
extern ClassData freed;

[[nodiscard]] bool isBlock(const Object* object);
/// Whether a block is on the heap. Its class does not tell.
[[nodiscard]] bool isCopied(const Object* block);
/// Whether references to it are counted.
[[nodiscard]] bool isCounted(const Object* object);
[[nodiscard]] Header& headerOf(Object* object);

/// Ends the process when the class does not understand the selector.
[[nodiscard]] void* methodOf(const ClassData* cls, const char* selector);
Object* copyBlock(Object* block, const char* selector);

template <class Result = Object*>
Result send(Object* receiver, const char* selector) {
    return reinterpret_cast<Result (*)(Object*, const char*)>(methodOf(receiver->isa, selector))(receiver, selector);
}

} // namespace vantry::objc
