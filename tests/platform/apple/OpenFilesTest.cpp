#include "platform/OpenFiles.h"

#include "tests/platform/apple/OnDarwin.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vantry {

namespace {

using Paths = std::vector<std::filesystem::path>;

/// With a script in place of lsof.
class AppleOpenFiles : public OnDarwin {
protected:
    void setProgram(const std::string& script) {
        writeFile(folder / "lsof", "#!/bin/sh\n" + script);
        std::filesystem::permissions(folder / "lsof", std::filesystem::perms::owner_all);
        system.programs["/usr/sbin/lsof"] = folder / "lsof";
    }

    const TemporaryFolder folder;
};

} // namespace

TEST_F(AppleOpenFiles, AreTheOutputOfLsofEvenIfItMissesSome) {
    for (const char* status : {"0", "1"}) {
        setProgram("[ \"$*\" = '-Fn -p 123' ] && printf 'p123\\nf3\\nn/one film.mov\\nf4\\nn/two\\n'; exit " +
                   std::string(status));
        EXPECT_EQ(openFilesOfProcess(123), (Paths{"/one film.mov", "/two"})) << status;
    }
}

TEST_F(AppleOpenFiles, AreEmptyWhenLsofFailsOrIsMissing) {
    setProgram("printf 'n/one\\n'; exit 2");
    EXPECT_EQ(openFilesOfProcess(123), Paths());
    system.programs["/usr/sbin/lsof"] = folder / "missing";
    EXPECT_EQ(openFilesOfProcess(123), Paths());
}

} // namespace vantry
