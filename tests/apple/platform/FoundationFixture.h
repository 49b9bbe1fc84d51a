#pragma once

#include "tests/apple/foundation/Files.h"
#include "tests/apple/runtime/Runtime.h"
#include "tests/platform/contract/PinnedFileFixture.h"
#include "tests/support/darwin/DarwinSystem.h"

namespace vantry::apple {

/// A pinned "folder/deeper/file" and a system that has a Trash. At the end of a test nothing may be left alive.
class FoundationFixture : public Pinned {
protected:
    void SetUp() override {
        std::filesystem::create_directories(system.trash = root / ".Trash");
        @autoreleasepool { // lives as long as the process
            (void)[NSFileManager defaultManager];
        }
        livingBefore_ = objc::liveObjects();
    }
    void TearDown() override {
        FileSystem::reset();
        DarwinSystem::reset();
        EXPECT_EQ(objc::liveObjects(), livingBefore_);
    }

    FileSystem& system = FileSystem::get();

private:
    std::map<std::string, long> livingBefore_;
};

} // namespace vantry::apple
