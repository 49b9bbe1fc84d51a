#include "tests/apple/runtime/Runtime.h"

#include <Block.h>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <pthread.h>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vantry::objc {

namespace {

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

using Initializer = void(Object*, const char*);

} // namespace

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

/// Everything that threads share, except the number of references.
struct Shared {
    std::mutex lock;
    std::set<std::string> selectorNames;
    std::unordered_map<std::string, ClassData*> classes;
    std::unordered_map<Object*, std::set<Object**>> weakReferences;
    std::unordered_map<ClassData*, long> liveObjects;
};

Shared& shared() {
    static Shared& one = *new Shared; // outlives every object
    return one;
}

const char* intern(const char* name) {
    const std::lock_guard held(shared().lock);
    return shared().selectorNames.emplace(name).first->c_str();
}

struct Selectors {
    const char* alloc = intern("alloc");
    const char* init = intern("init");
    const char* copy = intern("copy");
    const char* dealloc = intern("dealloc");
};

/// Constructors send messages.
const Selectors selectors __attribute__((init_priority(101)));

/// The class of an object that is gone.
ClassData freed{};

bool isMetaclass(const ClassData* cls) { return (cls->readOnly->flags & metaclassFlag) != 0; }

bool isBlock(const Object* object) {
    const void* const isa = object->isa;
    return isa == stackBlock || isa == globalBlock || isa == mallocBlock;
}

/// Whether a block is on the heap. Its class does not tell.
bool isCopied(const Object* block) {
    struct Block {
        const void* isa;
        int flags;
    };
    constexpr int needsFree = 1 << 24; // "Block Implementation Specification"
    return (reinterpret_cast<const Block*>(block)->flags & needsFree) != 0;
}

/// Whether references to it are counted.
bool isCounted(const Object* object) { return object->isa != &constantString && !isMetaclass(object->isa); }

Header& headerOf(Object* object) { return *(reinterpret_cast<Header*>(object) - 1); }

// ---- start

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

// ---- messages

[[noreturn]] void refuse(const ClassData* cls, const char* selector, const char* why) {
    die(std::string(isMetaclass(cls) ? "+[" : "-[") + cls->readOnly->name + " " + selector + "]: " + why);
}

void* methodOf(const ClassData* cls, const char* selector) {
    if (cls->info->mainThreadOnly && !isMainThread())
        refuse(cls, selector, "not on the main thread");
    const auto found = cls->info->methods.find(selector);
    if (found == cls->info->methods.end())
        refuse(cls, selector, "unrecognized selector");
    return found->second;
}

Object* copyBlock(Object* block, const char*) { return static_cast<Object*>(_Block_copy(block)); }

template <class Result = Object*>
Result send(Object* receiver, const char* selector) {
    return reinterpret_cast<Result (*)(Object*, const char*)>(methodOf(receiver->isa, selector))(receiver, selector);
}

// ---- references

struct Pool {
    std::vector<Object*> objects;
    std::size_t depth = 0;
};

// Not a thread_local variable, as that would be zeroed data, with which mold 1.10 makes executables that do not start
// when its address is at the wrong side of a page's end.
Pool& pool() {
    static const pthread_key_t key = [] {
        pthread_key_t made = 0;
        if (pthread_key_create(&made, [](void* own) { delete static_cast<Pool*>(own); }) != 0)
            std::abort();
        return made;
    }();
    void* own = pthread_getspecific(key);
    if (!own && pthread_setspecific(key, own = new Pool) != 0)
        std::abort();
    return *static_cast<Pool*>(own);
}

void forgetWeakReference(Object** place) {
    if (*place)
        if (const auto found = shared().weakReferences.find(*place); found != shared().weakReferences.end())
            found->second.erase(place);
}

void setWeakReference(Object** place, Object* object) {
    if (object && isCounted(object) && headerOf(object).references >= deallocating)
        die(std::string("a weak reference to an object that is being deallocated: ") + className(object->isa));
    *place = object;
    if (object)
        shared().weakReferences[object].insert(place);
}

} // namespace

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

// What the compiler calls. Names and effects: "Automatic Reference Counting" in the documentation of clang, "Runtime
// support".

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

Object* objc_retain(Object* object) {
    if (!object)
        return nullptr;
    if (isBlock(object)) // one on the stack is copied where the compiler asks for a copy
        return isCopied(object) ? copyBlock(object, nullptr) : object;
    if (isCounted(object))
        headerOf(object).references.fetch_add(1, std::memory_order_relaxed);
    return object;
}

void objc_release(Object* object) {
    if (!object)
        return;
    if (isBlock(object)) {
        if (isCopied(object))
            _Block_release(object);
        return;
    }
    if (!isCounted(object))
        return;
    const long left = headerOf(object).references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left > 0)
        return;
    if (left < 0)
        die(std::string("released too often: ") + className(object->isa));
    {
        const std::lock_guard held(shared().lock);
        if (const auto found = shared().weakReferences.find(object); found != shared().weakReferences.end()) {
            for (Object** place : found->second)
                *place = nullptr;
            shared().weakReferences.erase(found);
        }
    }
    headerOf(object).references = deallocating; // `dealloc` may retain and release it
    send<void>(object, selectors.dealloc);
}

Object* objc_autorelease(Object* object) {
    if (!object)
        return nullptr;
    if (pool().depth == 0)
        die("autoreleased without a pool");
    pool().objects.push_back(object);
    return object;
}

void* objc_autoreleasePoolPush() {
    ++pool().depth;
    return reinterpret_cast<void*>(pool().objects.size() + 1);
}

void objc_autoreleasePoolPop(void* mark) {
    while (pool().objects.size() + 1 > reinterpret_cast<std::size_t>(mark)) {
        Object* const last = pool().objects.back();
        pool().objects.pop_back();
        objc_release(last);
    }
    --pool().depth;
}

Object* objc_retainAutorelease(Object* object) { return objc_autorelease(objc_retain(object)); }
Object* objc_autoreleaseReturnValue(Object* object) { return objc_autorelease(object); }
Object* objc_retainAutoreleaseReturnValue(Object* object) { return objc_retainAutorelease(object); }
Object* objc_retainAutoreleasedReturnValue(Object* object) { return objc_retain(object); }
Object* objc_unsafeClaimAutoreleasedReturnValue(Object* object) { return object; }
Object* objc_retainBlock(Object* block) { return block ? copyBlock(block, nullptr) : nullptr; }

void objc_storeStrong(Object** place, Object* object) {
    objc_retain(object);
    objc_release(std::exchange(*place, object));
}

Object* objc_storeWeak(Object** place, Object* object) {
    const std::lock_guard held(shared().lock);
    forgetWeakReference(place);
    setWeakReference(place, object);
    return object;
}

Object* objc_initWeak(Object** place, Object* object) {
    *place = nullptr;
    return objc_storeWeak(place, object);
}

void objc_destroyWeak(Object** place) { objc_storeWeak(place, nullptr); }

Object* objc_loadWeakRetained(Object** place) {
    const std::lock_guard held(shared().lock);
    Object* const object = *place;
    if (!object || !isCounted(object))
        return object;
    // Another thread may have taken the last reference away and wait for the lock.
    std::atomic<long>& references = headerOf(object).references;
    for (long count = references; count > 0;)
        if (references.compare_exchange_weak(count, count + 1))
            return object;
    return nullptr;
}

Object* objc_loadWeak(Object** place) { return objc_autorelease(objc_loadWeakRetained(place)); }

void objc_copyWeak(Object** to, Object** from) {
    Object* const object = objc_loadWeakRetained(from);
    objc_initWeak(to, object);
    objc_release(object);
}

void objc_moveWeak(Object** to, Object** from) {
    objc_copyWeak(to, from);
    objc_destroyWeak(from);
}

void objc_enumerationMutation(Object*) { die("a collection was changed while it was enumerated"); }

Object* objc_alloc(ClassData* cls) { return cls ? send(reinterpret_cast<Object*>(cls), selectors.alloc) : nullptr; }

Object* objc_alloc_init(ClassData* cls) {
    Object* const object = objc_alloc(cls);
    return object ? send(object, selectors.init) : nullptr;
}

namespace {

Object** ivarAt(Object* self, std::ptrdiff_t offset) {
    return reinterpret_cast<Object**>(reinterpret_cast<char*>(self) + offset);
}

void storeCopy(Object** place, Object* value) {
    Object* const copy = !value ? nullptr : isBlock(value) ? copyBlock(value, nullptr) : send(value, selectors.copy);
    objc_release(std::exchange(*place, copy));
}

} // namespace

Object* objc_getProperty(Object* self, const char*, std::ptrdiff_t offset, bool) {
    return objc_retainAutorelease(*ivarAt(self, offset));
}
void objc_setProperty_atomic(Object* self, const char*, Object* value, std::ptrdiff_t offset) {
    objc_storeStrong(ivarAt(self, offset), value);
}
void objc_setProperty_nonatomic(Object* self, const char*, Object* value, std::ptrdiff_t offset) {
    objc_storeStrong(ivarAt(self, offset), value);
}
void objc_setProperty_atomic_copy(Object* self, const char*, Object* value, std::ptrdiff_t offset) {
    storeCopy(ivarAt(self, offset), value);
}
void objc_setProperty_nonatomic_copy(Object* self, const char*, Object* value, std::ptrdiff_t offset) {
    storeCopy(ivarAt(self, offset), value);
}
void objc_copyStruct(void* to, const void* from, std::ptrdiff_t size, bool, bool) {
    std::memmove(to, from, static_cast<std::size_t>(size));
}

} // extern "C"

} // namespace vantry::objc

// Sending a message: the arguments are kept while the method is looked up, and then the method is jumped to, so that it
// sees the caller's frame. A message to nil answers with zeros.
__asm__(R"(
.macro keep_arguments
    push %rbp
    mov %rsp, %rbp
    sub $192, %rsp
    mov %rdi, (%rsp)
    mov %rsi, 8(%rsp)
    mov %rdx, 16(%rsp)
    mov %rcx, 24(%rsp)
    mov %r8, 32(%rsp)
    mov %r9, 40(%rsp)
    mov %rax, 48(%rsp)
    movaps %xmm0, 64(%rsp)
    movaps %xmm1, 80(%rsp)
    movaps %xmm2, 96(%rsp)
    movaps %xmm3, 112(%rsp)
    movaps %xmm4, 128(%rsp)
    movaps %xmm5, 144(%rsp)
    movaps %xmm6, 160(%rsp)
    movaps %xmm7, 176(%rsp)
.endm
.macro restore_arguments
    mov %rax, %r11
    mov (%rsp), %rdi
    mov 8(%rsp), %rsi
    mov 16(%rsp), %rdx
    mov 24(%rsp), %rcx
    mov 32(%rsp), %r8
    mov 40(%rsp), %r9
    mov 48(%rsp), %rax
    movaps 64(%rsp), %xmm0
    movaps 80(%rsp), %xmm1
    movaps 96(%rsp), %xmm2
    movaps 112(%rsp), %xmm3
    movaps 128(%rsp), %xmm4
    movaps 144(%rsp), %xmm5
    movaps 160(%rsp), %xmm6
    movaps 176(%rsp), %xmm7
    leave
.endm
.macro begin_function name
    .globl \name
    .type \name, @function
    .p2align 4
\name:
.endm

.text
begin_function objc_msgSend
    test %rdi, %rdi
    je 1f
    keep_arguments
    call vantryLookUp
    restore_arguments
    jmp *%r11
1:  xor %eax, %eax
    xor %edx, %edx
    xorps %xmm0, %xmm0
    xorps %xmm1, %xmm1
    ret

begin_function objc_msgSend_stret
    test %rsi, %rsi
    je 1f
    keep_arguments
    mov %rsi, %rdi
    mov %rdx, %rsi
    call vantryLookUp
    restore_arguments
    jmp *%r11
1:  mov %rdi, %rax
    ret

begin_function objc_msgSendSuper2
    keep_arguments
    call vantryLookUpSuper
    restore_arguments
    mov (%rdi), %rdi
    jmp *%r11

begin_function objc_msgSendSuper2_stret
    keep_arguments
    mov %rsi, %rdi
    mov %rdx, %rsi
    call vantryLookUpSuper
    restore_arguments
    mov (%rsi), %rsi
    jmp *%r11

begin_function __objc_personality_v0
    jmp __gxx_personality_v0
)");
