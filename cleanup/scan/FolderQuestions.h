#pragma once

#include "platform/ItemFacts.h"
#include "platform/StopSwitch.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace vantry {

/// Opens the folders about which the system may ask the user, once and before any worker does: a worker that waits for
/// the user is ended after half a second, and its scan would find nothing. All scans of the application share one.
class FolderQuestions {
public:
    /// Null without an opener: the system asks no questions.
    [[nodiscard]] static std::shared_ptr<FolderQuestions> create(FolderOpener opener = folderOpener());

    /// The first call opens the folders on a thread of its own and waits until that is done, for `longest`, or until
    /// the switch, if there is one, is stopped. Later calls do nothing. Any thread; not by two at once.
    void ask(std::vector<std::filesystem::path> folders, std::chrono::milliseconds longest,
             const StopSwitch* stopSwitch);

    /// What can be done with a folder: of those above as the system lets this application open it, `unknown` while a
    /// question is open; of others `folderAccess`. Any thread, after `ask`.
    [[nodiscard]] FolderAccess access(const std::filesystem::path& folder) const;

private:
    struct Questions;

    explicit FolderQuestions(FolderOpener opener) : opener_(std::move(opener)) {}

    FolderOpener opener_;
    std::shared_ptr<Questions> questions_; ///< the thread's as well, which may outlive this; null before they are asked
};

} // namespace vantry
