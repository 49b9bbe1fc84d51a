#pragma once

#include "platform/ItemFacts.h"
#include "platform/StopSwitch.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <vector>

namespace vantry {

struct ScanEnvironment;

/// Opens the folders about which the system may ask the user, once and before any worker does: a worker that waits for
/// the user is ended after half a second, and its scan would find nothing.
class FolderQuestions {
public:
    /// What is looked at by a scan of this system; nothing where the system asks no questions.
    [[nodiscard]] static std::shared_ptr<FolderQuestions> create(const ScanEnvironment& environment);

    FolderQuestions(FolderOpener opener, std::vector<std::filesystem::path> folders);

    /// The first call opens the folders on a thread of its own and waits until that is done, for `longest`, or until
    /// the switch, if there is one, is stopped. Later calls do nothing. Any thread; not by two at once.
    void ask(std::chrono::milliseconds longest, const StopSwitch* stopSwitch);

    /// What can be done with a folder: of those above as the system lets this application open it, `unknown` while a
    /// question is open; of others `folderAccess`. Any thread.
    [[nodiscard]] FolderAccess access(const std::filesystem::path& folder) const;

private:
    struct Questions;
    std::shared_ptr<Questions> questions_; ///< the thread's as well, which may outlive this
    bool asked_ = false;
};

} // namespace vantry
