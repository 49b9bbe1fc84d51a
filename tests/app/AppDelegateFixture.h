#pragma once

#include "app/AppDelegate.h"
#include "tests/support/FakeServices.h"
#include "tests/support/FakeShell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace vantry {

/// An application in a world that stands still. A test arranges `world` and `shell`, then launches.
class AppDelegateFixture : public testing::Test {
protected:
    /// Launches and leaves everything that was asked of the queues waiting.
    void launch() { launchWith(world.appServices()); }
    void launchWith(AppServices services) {
        delegate = std::make_shared<AppDelegate>(shell, std::move(services));
        delegate->applicationDidFinishLaunching();
    }

    /// Launches, lets the first read and the first sampling end, and forgets what was asked until then.
    void launchAndSettle() {
        launch();
        world.settle();
        world.log->clear();
    }

    FakeServices world;
    FakeCallLog& log = *world.log;
    FakeShell shell{world.log};
    std::shared_ptr<AppDelegate> delegate;
};

} // namespace vantry
