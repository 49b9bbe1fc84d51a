#include "platform/BackgroundQueue.h"

#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace vantry {

namespace {

constexpr int utilityNiceness = 5;

// Starts a thread for each block: work comes once a minute or when the user asks, so no idle threads are kept.
class ThreadQueue : public BackgroundQueue {
public:
    void submit(QualityOfService quality, std::function<void()> block) override {
        try {
            std::thread([quality, block] {
                if (quality == QualityOfService::utility)
                    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), utilityNiceness);
                block();
            }).detach();
        } catch (const std::system_error&) {
            block();
        }
    }
};

} // namespace

std::unique_ptr<BackgroundQueue> makeBackgroundQueue() { return std::make_unique<ThreadQueue>(); }

} // namespace vantry
