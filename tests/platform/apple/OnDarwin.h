#pragma once

#include "tests/support/darwin/Darwin.h"
#include "tests/support/darwin/DarwinSystem.h"

#include <gtest/gtest.h>

namespace vantry {

/// A test of what runs on the stand-in for Darwin, which is put back at its end.
class OnDarwin : public testing::Test {
protected:
    void TearDown() override {
        DarwinSystem::reset();
        setiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD,
                       IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT);
    }

    DarwinSystem& system = DarwinSystem::get();
};

} // namespace vantry
