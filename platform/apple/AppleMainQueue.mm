#include "platform/apple/Services.h"

#include <Foundation/Foundation.h>
#include <dispatch/dispatch.h>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

using Block = std::function<void()>;

// The subscription owns the block and the callback holds it weakly: nothing runs after the subscription is destroyed,
// and a block that ends its own subscription lives until it returns.
void runIfHeld(const std::weak_ptr<Block>& block) {
    @autoreleasepool {
        if (const auto held = block.lock())
            (*held)();
    }
}

class TimerSubscription : public Subscription {
public:
    TimerSubscription(std::chrono::milliseconds interval, Block block)
        : block_(std::make_shared<Block>(std::move(block))) {
        const std::weak_ptr<Block> weakBlock = block_;
        timer_ = [NSTimer timerWithTimeInterval:std::chrono::duration<NSTimeInterval>(interval).count()
                                        repeats:YES
                                          block:^(NSTimer*) {
                                              runIfHeld(weakBlock);
                                          }];
        [[NSRunLoop mainRunLoop] addTimer:timer_ forMode:NSRunLoopCommonModes];
    }
    ~TimerSubscription() override {
        @autoreleasepool {
            [timer_ invalidate];
        }
    }

private:
    std::shared_ptr<Block> block_;
    NSTimer* timer_ = nil;
};

class ReadSubscription : public Subscription {
public:
    ReadSubscription(int fd, Block block) : block_(std::make_shared<Block>(std::move(block))) {
        // A descriptor must stay open until its source has been cancelled, which happens after this is destroyed, and
        // the caller may close its own at once. Hence a duplicate; if no descriptor is free, the caller's is used.
        const int duplicate = fcntl(fd, F_DUPFD_CLOEXEC, 0);
        const int watched = duplicate >= 0 ? duplicate : fd;
        source_ = dispatch_source_create(DISPATCH_SOURCE_TYPE_READ, static_cast<uintptr_t>(watched), 0,
                                         dispatch_get_main_queue());
        const std::weak_ptr<Block> weakBlock = block_;
        dispatch_source_set_event_handler(source_, ^{
            runIfHeld(weakBlock);
        });
        dispatch_source_set_cancel_handler(source_, ^{
            if (duplicate >= 0)
                close(duplicate);
        });
        dispatch_activate(source_);
    }
    ~ReadSubscription() override {
        @autoreleasepool {
            dispatch_source_cancel(source_);
        }
    }

private:
    std::shared_ptr<Block> block_;
    dispatch_source_t source_ = nil;
};

class AppleMainQueue : public MainQueue {
public:
    // By pointer, so that the block is destroyed on the main thread.
    void post(Block block) override {
        dispatch_async_f(dispatch_get_main_queue(), new Block(std::move(block)), [](void* context) {
            @autoreleasepool {
                const std::unique_ptr<Block> posted(static_cast<Block*>(context));
                (*posted)();
            }
        });
    }
    std::unique_ptr<Subscription> repeatEvery(std::chrono::milliseconds interval, Block block) override {
        @autoreleasepool {
            return std::make_unique<TimerSubscription>(interval, std::move(block));
        }
    }
    std::unique_ptr<Subscription> whenReadable(int fd, Block block) override {
        @autoreleasepool {
            return std::make_unique<ReadSubscription>(fd, std::move(block));
        }
    }
};

} // namespace

std::shared_ptr<MainQueue> makeMainQueue() { return std::make_shared<AppleMainQueue>(); }

} // namespace vantry
