#include "tests/apple/runtime/RuntimeInternals.h"

#include <Block.h>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <pthread.h>
#include <vector>

namespace vantry::objc {

extern "C" {
extern ClassData* startOfClasses[] __asm__("__start_objc_classlist") __attribute__((weak));
extern ClassData* endOfClasses[] __asm__("__stop_objc_classlist") __attribute__((weak));
extern const char* startOfSelectors[] __asm__("__start_objc_selrefs") __attribute__((weak));
extern const char* endOfSelectors[] __asm__("__stop_objc_selrefs") __attribute__((weak));
extern Category* startOfCategories[] __asm__("__start_objc_catlist") __attribute__((weak));
extern Category* endOfCategories[] __asm__("__stop_objc_catlist") __attribute__((weak));
extern ClassData constantString __asm__("__CFConstantStringClassReference") __attribute__((weak));
extern void* stackBlock[] __asm__("_NSConcreteStackBlock");
extern void* globalBlock[] __asm__("_NSConcreteGlobalBlock");
extern void* mallocBlock[] __asm__("_NSConcreteMallocBlock");
}

namespace {

using Initializer = void(Object*, const char*);

bool isMetaclass(const ClassData* cls) { return (cls->readOnly->flags & metaclassFlag) != 0; }

} // namespace

Shared& shared() {
    static Shared& one = *new Shared; // outlives every object
    return one;
}

const char* intern(const char* name) {
    const std::lock_guard held(shared().lock);
    return shared().selectorNames.emplace(name).first->c_str();
}

// Constructors of other sources send messages.
const Selectors selectors __attribute__((init_priority(101)));

ClassData freed{};

bool isBlock(const Object* object) {
    const void* const isa = object->isa;
    return isa == stackBlock || isa == globalBlock || isa == mallocBlock;
}

bool isCopied(const Object* block) {
    struct Block {
        const void* isa;
        int flags;
    };
    constexpr int needsFree = 1 << 24; // "Block Implementation Specification"
    return (reinterpret_cast<const Block*>(block)->flags & needsFree) != 0;
}

bool isCounted(const Object* object) { return object->isa != &constantString && !isMetaclass(object->isa); }

Header& headerOf(Object* object) { return *(reinterpret_cast<Header*>(object) - 1); }

// ---- start

namespace {

void addMethods(ClassInfo& info, List<Method>* methods) {
    if (!methods)
        return;
    for (Method& method : *methods) {
        const std::string_view name = method.name;
        if (name == "load" || name == "initialize")
            die("+load and +initialize are not sent");
        if (name == ".cxx_construct")
            info.construct = method.implementation;
        else if (name == ".cxx_destruct")
            info.destruct = method.implementation;
        else
            info.methods[intern(method.name)] = method.implementation;
    }
}

// The compiler laid the object out after the superclass that it saw, whose own variables may have been hidden from it.
void slideIvars(ReadOnly& cls, const ReadOnly& superclass) {
    if (superclass.instanceSize <= cls.instanceStart)
        return;
    const std::uint32_t distance = (superclass.instanceSize - cls.instanceStart + 15) / 16 * 16;
    if (cls.ivars)
        for (const Ivar& ivar : *cls.ivars)
            if (ivar.offset)
                *ivar.offset += static_cast<std::int32_t>(distance);
    cls.instanceStart += distance;
    cls.instanceSize += distance;
}

/// Gives a class what it inherits, after its superclass got that.
void connect(ClassData* cls, std::set<ClassData*>& connected) {
    if (!cls || !connected.insert(cls).second)
        return;
    connect(cls->superclass, connected);
    if (cls->superclass) {
        cls->info->methods.insert(cls->superclass->info->methods.begin(), cls->superclass->info->methods.end());
        if (!isMetaclass(cls))
            slideIvars(*cls->readOnly, *cls->superclass->readOnly);
    }
    if (!isMetaclass(cls))
        connect(cls->isa, connected);
}

pthread_t mainThread;

// Before any constructor of a test or of what is tested.
__attribute__((constructor(101))) void start() {
    mainThread = pthread_self();
    for (const char** selector = startOfSelectors; selector != endOfSelectors; ++selector)
        *selector = intern(*selector);
    for (ClassData** cls = startOfClasses; cls != endOfClasses; ++cls)
        for (ClassData* each : {*cls, (*cls)->isa}) {
            each->info = new ClassInfo;
            addMethods(*each->info, each->readOnly->methods);
            if (each == *cls)
                shared().classes.emplace(each->readOnly->name, each);
        }
    for (Category** category = startOfCategories; category != endOfCategories; ++category) {
        addMethods(*(*category)->cls->info, (*category)->instanceMethods);
        addMethods(*(*category)->cls->isa->info, (*category)->classMethods);
    }
    std::set<ClassData*> connected;
    for (ClassData** cls = startOfClasses; cls != endOfClasses; ++cls)
        connect(*cls, connected);
}

} // namespace

// ---- messages

namespace {

[[noreturn]] void refuse(const ClassData* cls, const char* selector, const char* why) {
    die(std::string(isMetaclass(cls) ? "+[" : "-[") + cls->readOnly->name + " " + selector + "]: " + why);
}

} // namespace

void* methodOf(const ClassData* cls, const char* selector) {
    if (cls->info->mainThreadOnly && !isMainThread())
        refuse(cls, selector, "not on the main thread");
    const auto found = cls->info->methods.find(selector);
    if (found == cls->info->methods.end())
        refuse(cls, selector, "unrecognized selector");
    return found->second;
}

Object* copyBlock(Object* block, const char*) { return static_cast<Object*>(_Block_copy(block)); }

void die(const std::string& reason) {
    std::fprintf(stderr, "%s\n", reason.c_str());
    std::abort();
}

void* allocate(void* cls) {
    auto* const data = static_cast<ClassData*>(cls);
    void* const memory = std::calloc(1, sizeof(Header) + data->readOnly->instanceSize);
    auto* const header = new (memory) Header{1};
    auto* const object = reinterpret_cast<Object*>(header + 1);
    object->isa = data;
    std::vector<ClassData*> chain;
    for (ClassData* each = data; each; each = each->superclass)
        chain.push_back(each);
    for (auto each = chain.rbegin(); each != chain.rend(); ++each)
        if (void* const construct = (*each)->info->construct)
            reinterpret_cast<Initializer*>(construct)(object, nullptr);
    const std::lock_guard held(shared().lock);
    ++shared().liveObjects[data];
    return object;
}

void deallocate(void* object) {
    auto* const dying = static_cast<Object*>(object);
    for (ClassData* each = dying->isa; each; each = each->superclass)
        if (void* const destruct = each->info->destruct)
            reinterpret_cast<Initializer*>(destruct)(dying, nullptr);
    {
        const std::lock_guard held(shared().lock);
        --shared().liveObjects[dying->isa];
    }
    dying->isa = &freed;
    std::free(&headerOf(dying));
}

void* findMethod(const void* cls, const char* selector) {
    const auto& methods = static_cast<const ClassData*>(cls)->info->methods;
    const auto found = methods.find(selector);
    return found == methods.end() ? nullptr : found->second;
}

void* superclassOf(const void* cls) { return static_cast<const ClassData*>(cls)->superclass; }

const char* className(const void* cls) { return static_cast<const ClassData*>(cls)->readOnly->name; }

void restrictToMainThread(const void* cls) {
    for (const auto& [name, each] : shared().classes)
        for (const ClassData* at = each; at; at = at->superclass)
            if (at == cls)
                each->info->mainThreadOnly = each->isa->info->mainThreadOnly = true;
}

bool isMainThread() { return pthread_equal(pthread_self(), mainThread) != 0; }

std::map<std::string, long> liveObjects() {
    const std::lock_guard held(shared().lock);
    std::map<std::string, long> found;
    for (const auto& [cls, count] : shared().liveObjects)
        if (count != 0)
            found[className(cls)] = count;
    return found;
}

// What the compiler calls.

extern "C" {

void* cacheOfNewClasses[2] __asm__("_objc_empty_cache");

void* vantryLookUp(Object* receiver, const char* selector) {
    if (isBlock(receiver)) {
        if (selector != selectors.copy)
            die(std::string("a message to a block: ") + selector);
        return reinterpret_cast<void*>(copyBlock);
    }
    if (receiver->isa == &freed)
        die(std::string("a message to an object that is gone: ") + selector);
    return methodOf(receiver->isa, selector);
}

struct Super {
    Object* receiver;
    ClassData* cls;
};

void* vantryLookUpSuper(const Super* super, const char* selector) { return methodOf(super->cls->superclass, selector); }

const char* sel_registerName(const char* name) { return intern(name); }
const char* sel_getName(const char* selector) { return selector; }

void* objc_getClass(const char* name) {
    const auto found = shared().classes.find(name);
    return found == shared().classes.end() ? nullptr : found->second;
}

} // extern "C"

} // namespace vantry::objc
