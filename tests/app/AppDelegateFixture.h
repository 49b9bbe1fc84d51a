#pragma once

#include "app/AppDelegate.h"
#include "tests/support/FakeServices.h"
#include "tests/support/FakeShell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace vantry {

/// An application in a world that changes only on request. A test sets up `world` and `shell`, then launches.
class AppDelegateFixture : public testing::Test {
protected:
    /// Launches and leaves all posted and submitted blocks waiting.
    void launch() { launchWith(world.appServices()); }
    void launchWith(AppServices services) {
        delegate = std::make_shared<AppDelegate>(shell, std::move(services));
        delegate->applicationDidFinishLaunching();
    }

    /// Launches, finishes the first read and the first sampling, and clears the log.
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
