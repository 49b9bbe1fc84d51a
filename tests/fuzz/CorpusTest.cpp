// The kept inputs of the fuzz targets, run once each with every compiler.

#include "tests/fuzz/Targets.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vantry {

TEST(FuzzTargets, DoNothingWrongWithTheInputsThatAreKept) {
    const std::filesystem::path corpus = OMBREL_SOURCE_ROOT "/tests/fuzz/corpus";
    for (const auto& target : fuzzTargets()) {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(corpus / target.name)) {
            SCOPED_TRACE(entry.path());
            target.run(readFile(entry.path())); // ends the process if something is wrong
            ++count;
        }
        EXPECT_GE(count, 10) << target.name;
        target.run("");
    }
}

} // namespace vantry
