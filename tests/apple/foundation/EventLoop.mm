// The main queue, timers, sources and notifications.

#include "tests/apple/foundation/EventLoop.h"

#include "tests/apple/runtime/Runtime.h"

#include <dispatch/dispatch.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <poll.h>
#include <thread>
#include <utility>

using namespace vantry;
using Milliseconds = std::chrono::milliseconds;

@interface VantryQueue : NSObject <OS_dispatch_queue>
@end
@implementation VantryQueue
@end

@interface VantrySource : NSObject <OS_dispatch_source> {
@public
    int _fd;
    dispatch_block_t _event;
    dispatch_block_t _cancel;
}
@end
@implementation VantrySource
@end

@interface NSTimer () {
@public
    Milliseconds _interval;
    Milliseconds _due;
    void (^_block)(NSTimer*);
}
@end

namespace vantry::apple {

namespace {

std::mutex lock;
std::condition_variable somethingWasPosted;
auto& posted = *new std::deque<std::function<void()>>; // outlives the threads, which post until the process ends

// Of the main thread.
std::vector<VantrySource*> sources;
std::vector<NSTimer*> timers;
Milliseconds clockTime{0};
std::function<void()> afterEachTurn;
std::vector<std::string> complaints;

void turn(const std::function<void()>& block) {
    @autoreleasepool {
        block();
        if (afterEachTurn)
            afterEachTurn();
    }
}

bool runOnePosted() {
    std::function<void()> block;
    {
        const std::lock_guard held(lock);
        if (posted.empty())
            return false;
        block = std::move(posted.front());
        posted.pop_front();
    }
    turn(block);
    return true;
}

void pollSources() {
    for (VantrySource* source : std::vector(sources)) {
        pollfd waited{source->_fd, POLLIN, 0};
        if (poll(&waited, 1, 0) > 0 && source->_event)
            turn(source->_event);
    }
}

int queueDepth = 0;

void onMainQueue(const std::function<void()>& block) {
    ++queueDepth;
    block();
    --queueDepth;
}

VantrySource* sourceOf(dispatch_source_t source) { return static_cast<VantrySource*>(source); }

} // namespace

void post(std::function<void()> block) {
    {
        const std::lock_guard held(lock);
        posted.push_back(std::move(block));
    }
    somethingWasPosted.notify_one();
}

void runPosted() {
    pollSources();
    while (runOnePosted())
        continue;
}

void advance(Milliseconds time) {
    const Milliseconds end = clockTime + time;
    runPosted();
    while (!timers.empty()) {
        NSTimer* const next = *std::ranges::min_element(timers, {}, [](NSTimer* timer) { return timer->_due; });
        if (next->_due > end)
            break;
        clockTime = next->_due;
        next->_due += next->_interval;
        turn([next] { next->_block(next); });
        runPosted();
    }
    clockTime = end;
}

bool runUntil(const std::function<bool()>& done) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (runPosted(); !done(); runPosted()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::unique_lock held(lock); // sources are looked at now and then
        somethingWasPosted.wait_for(held, Milliseconds(5), [] { return !posted.empty(); });
    }
    return true;
}

void setAfterEachTurn(std::function<void()> block) { afterEachTurn = std::move(block); }

// "The main queue is serial": its other blocks wait for the end of the one that runs.
void complainOfNestedLoop() {
    if (queueDepth > 0)
        complain("an event loop runs inside a block of the main queue and holds up the others");
}

void complain(const std::string& what) { complaints.push_back(what); }

std::vector<std::string> takeComplaints() { return std::exchange(complaints, {}); }

} // namespace vantry::apple

using namespace vantry::apple;

// ---- dispatch; "Dispatch" in Apple's documentation

extern "C" {

const struct dispatch_source_type_s { int nothing; } _dispatch_source_type_read{};

dispatch_queue_t _dispatch_main_q = [[VantryQueue alloc] init];

void dispatch_async(dispatch_queue_t, dispatch_block_t block) {
    const dispatch_block_t kept = [block copy];
    post([kept] { onMainQueue([&] { kept(); }); });
}

// As a pointer, since it autoreleases nothing.
void* globalQueue(long, unsigned long) __asm__("dispatch_get_global_queue");
void* globalQueue(long, unsigned long) {
    static const dispatch_queue_t queue = [[VantryQueue alloc] init];
    return (__bridge void*)queue;
}

// A global queue is concurrent.
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
    if (queue == _dispatch_main_q)
        post([context, work] { onMainQueue([&] { work(context); }); });
    else
        std::thread([context, work] { work(context); }).detach();
}

dispatch_source_t dispatch_source_create(dispatch_source_type_t, uintptr_t handle, unsigned long, dispatch_queue_t) {
    VantrySource* const source = [[VantrySource alloc] init];
    source->_fd = static_cast<int>(handle);
    return source;
}

void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler) {
    sourceOf(source)->_event = [handler copy];
}

void dispatch_source_set_cancel_handler(dispatch_source_t source, dispatch_block_t handler) {
    sourceOf(source)->_cancel = [handler copy];
}

void dispatch_activate(dispatch_source_t source) { sources.push_back(sourceOf(source)); }

// The cancel handler is submitted to the queue, and the handlers are released afterwards.
void dispatch_source_cancel(dispatch_source_t source) {
    VantrySource* const cancelled = sourceOf(source);
    std::erase(sources, cancelled);
    post([cancelled] {
        if (cancelled->_cancel)
            cancelled->_cancel();
        cancelled->_event = cancelled->_cancel = nil;
    });
}

NSRunLoopMode const NSRunLoopCommonModes = @"kCFRunLoopCommonModes";
}

@implementation NSTimer

+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval repeats:(BOOL)repeats block:(void (^)(NSTimer*))block {
    if (!repeats)
        objc::die("a timer that fires once is not there");
    NSTimer* timer = [[NSTimer alloc] init];
    timer->_interval = std::chrono::duration_cast<Milliseconds>(std::chrono::duration<double>(interval));
    timer->_block = [block copy];
    return timer;
}

// The run loop lets go of it, and it of its block.
- (void)invalidate {
    _block = nil;
    std::erase(timers, self);
}

@end

@implementation NSProcessInfo

SHARED(NSProcessInfo, processInfo)

ANSWERS(NSTimeInterval, systemUptime, std::chrono::duration<NSTimeInterval>(clockTime).count())

@end

@implementation NSRunLoop

SHARED(NSRunLoop, mainRunLoop)

- (void)performBlock:(void (^)(void))block {
    void (^const kept)(void) = [block copy];
    post([kept] { kept(); });
}

- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode {
    timer->_due = clockTime + timer->_interval;
    timers.push_back(timer);
}

@end

@implementation NSOperationQueue

SHARED(NSOperationQueue, mainQueue)

@end

@implementation NSNotification
@end

namespace {

struct Observer {
    NSObject* token;
    NSString* name;
    void (^block)(NSNotification*);
};

} // namespace

@implementation NSNotificationCenter {
    std::vector<Observer> _observers;
}

- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block {
    if (object || queue != [NSOperationQueue mainQueue])
        objc::die("only observers on the main queue, of every sender");
    NSObject* token = [[NSObject alloc] init];
    _observers.push_back({token, name, [block copy]});
    return token;
}

- (void)removeObserver:(id)token {
    if (std::erase_if(_observers, [token](const Observer& each) { return each.token == token; }) == 0)
        complain("an observer is removed that is not there");
}

- (void)postNotificationName:(NSNotificationName)name object:(id)object {
    for (const Observer& observer : std::vector(_observers))
        if ([observer.name isEqualToString:name])
            turn([&observer] { observer.block(nil); });
}

@end
