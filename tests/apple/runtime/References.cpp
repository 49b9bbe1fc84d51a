#include "tests/apple/runtime/RuntimeInternals.h"

#include <Block.h>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <utility>
#include <vector>

namespace vantry::objc {

namespace {

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

// What the compiler calls. Names and effects: "Automatic Reference Counting" in the documentation of clang, "Runtime
// support".

extern "C" {

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
