#pragma once

#include "platform/ItemFacts.h"
#include "platform/StopSwitch.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace vantry {

/// Opens the folders that the system asks the user about, once and before any worker opens them: a worker that waits
/// for the user is killed after half a second, and its scan would find nothing. All scans of the application share one
/// object.
class FolderQuestions {
public:
    /// Null without an opener: the system asks no questions.
    [[nodiscard]] static std::shared_ptr<FolderQuestions> create(FolderOpener opener = folderOpener());

    /// The first call opens the folders on a thread of its own and waits for that: at most `longest`, and until the
    /// switch, if there is one, is stopped. Later calls do nothing. Any thread, one at a time.
    void ask(std::vector<std::filesystem::path> folders, std::chrono::milliseconds longest,
             const StopSwitch* stopSwitch);

    /// The access that this application has to a folder. For the folders above: the user's answer, or `unknown` while
    /// the question is open. For others: `folderAccess`. Any thread, after `ask`.
    [[nodiscard]] FolderAccess access(const std::filesystem::path& folder) const;

private:
    struct Questions;

    explicit FolderQuestions(FolderOpener opener) : opener_(std::move(opener)) {}

    FolderOpener opener_;
    std::shared_ptr<Questions> questions_; ///< shared with the thread, which may outlive this; null before `ask`
};

} // namespace vantry
