#include "platform/SupervisedChild.h"

#include "platform/ProgramOutput.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EndedChild.h"
#include "tests/support/RecordedPolls.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <sys/syscall.h>

namespace vantry {

using namespace std::chrono_literals;

TEST(ASupervisedChildOnLinux, ThatSurvivesBeingKilledIsReapedWhenItEnds) {
    const TemporaryFolder root;
    const std::string end = root / "end";
    const std::string said = inChildProcess([&]() -> std::string {
        if (!refuseCall(SYS_pidfd_send_signal, EPERM)) // as if it were stuck in a hung file system
            return "no refusal";
        RecordedPolls::forget();
        static_cast<void>(
            programOutput("/bin/sh", {"-c", "while [ ! -e " + end + " ]; do sleep 0.01; done"}, 1, deadlineIn(10ms)));
        if (RecordedPolls::waitedInVain() > 10ms + 2 * 120ms + 5ms)
            return "waited too long";
        if (childCount() != 1)
            return "did not survive";
        writeFile(end, "");
        waitUntilChildrenAre(0);
        return childCount() == 0 ? "reaped" : "a zombie";
    });
    EXPECT_EQ(said, "reaped");
}

} // namespace vantry
