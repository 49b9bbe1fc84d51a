#pragma once

#include "platform/ChildProcess.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EndedChild.h"
#include "tests/support/OpenDescriptors.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace vantry {

/// No test leaves a child or a descriptor behind.
class AChildProcess : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_FALSE(hasChildren());
        EXPECT_EQ(openDescriptorCount(), descriptorsBefore_);
    }

private:
    const std::ptrdiff_t descriptorsBefore_ = openDescriptorCount();
};

/// What a start failed with, in a copy of this process that `prepare` has changed.
template <class Prepare>
[[nodiscard]] std::string failureAfter(Prepare prepare) {
    return inChildProcess([&]() -> std::string {
        if (!prepare())
            return "not prepared";
        const auto before = openDescriptorCount();
        const auto child = ChildProcess::start("/bin/sleep", {"60"}, ChildOutput::pipe);
        if (child)
            return "started";
        waitUntilChildrenAre(0);
        return child.error().message + (openDescriptorCount() != before ? ", with a descriptor left" : "") +
               (hasChildren() ? ", with a child left" : "");
    });
}

} // namespace vantry
