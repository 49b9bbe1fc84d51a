#include "platform/BackgroundQueue.h"

#include <dispatch/dispatch.h>
#include <utility>

namespace vantry {

namespace {

using Block = std::function<void()>;

dispatch_qos_class_t dispatchQuality(QualityOfService quality) {
    return quality == QualityOfService::utility ? QOS_CLASS_UTILITY : QOS_CLASS_USER_INITIATED;
}

class DispatchQueue : public BackgroundQueue {
public:
    // By pointer, so that the block is destroyed on the thread that ran it.
    void submit(QualityOfService quality, Block block) override {
        dispatch_async_f(dispatch_get_global_queue(dispatchQuality(quality), 0), new Block(std::move(block)),
                         [](void* context) {
                             @autoreleasepool {
                                 const std::unique_ptr<Block> submitted(static_cast<Block*>(context));
                                 (*submitted)();
                             }
                         });
    }
};

} // namespace

std::unique_ptr<BackgroundQueue> makeBackgroundQueue() { return std::make_unique<DispatchQueue>(); }

} // namespace vantry
