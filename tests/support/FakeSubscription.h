#pragma once

#include "platform/MainQueue.h"
#include "tests/support/FakeCallLog.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace vantry {

/// A block that a fake calls when the test says so, as long as its subscription lives.
struct FakeRegistration {
    std::function<void()> block;
    bool active = true;
};

/// Ends a registration and logs `endCall` when it is destroyed; does not need the fake that gave it out.
class FakeSubscription : public Subscription {
public:
    FakeSubscription(std::shared_ptr<FakeRegistration> registration, std::shared_ptr<FakeCallLog> log,
                     std::string endCall)
        : registration_(std::move(registration)),
          log_(std::move(log)),
          endCall_(std::move(endCall)) {}
    ~FakeSubscription() override {
        registration_->active = false;
        log_->add(endCall_);
    }

private:
    std::shared_ptr<FakeRegistration> registration_;
    std::shared_ptr<FakeCallLog> log_;
    std::string endCall_;
};

} // namespace vantry
