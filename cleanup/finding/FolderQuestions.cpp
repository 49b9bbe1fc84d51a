#include "cleanup/finding/FolderQuestions.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace vantry {

struct FolderQuestions::Questions {
    const FolderOpener opener;
    const std::vector<std::filesystem::path> folders;
    std::mutex mutex;
    std::condition_variable answered;
    std::size_t answers = 0; ///< how many of the folders, from the first on, were opened
};

std::shared_ptr<FolderQuestions> FolderQuestions::create(FolderOpener opener) {
    return opener ? std::shared_ptr<FolderQuestions>(new FolderQuestions(std::move(opener))) : nullptr;
}

void FolderQuestions::ask(std::vector<std::filesystem::path> folders, std::chrono::milliseconds longest,
                          const StopSwitch* stopSwitch) {
    if (questions_)
        return;
    questions_ = std::make_shared<Questions>(opener_, std::move(folders));
    const auto askAll = [questions = questions_] {
        for (const auto& folder : questions->folders) {
            static_cast<void>(questions->opener(folder));
            const std::lock_guard lock(questions->mutex);
            ++questions->answers;
            questions->answered.notify_all();
        }
    };
    try {
        std::thread(askAll).detach();    // detached: a user who never answers must not keep the process from ending
    } catch (const std::system_error&) { // without a thread, the workers meet the questions
        return;
    }
    constexpr std::chrono::milliseconds betweenLooks{50}; // how often the switch is looked at
    const auto end = std::chrono::steady_clock::now() + longest;
    std::unique_lock lock(questions_->mutex);
    while (questions_->answers < questions_->folders.size() && std::chrono::steady_clock::now() < end &&
           !(stopSwitch && stopSwitch->isStopped()))
        questions_->answered.wait_for(lock, betweenLooks);
}

FolderAccess FolderQuestions::access(const std::filesystem::path& folder) const {
    const auto found = std::ranges::find(questions_->folders, folder);
    if (found == questions_->folders.end())
        return folderAccess(folder);
    {
        const std::lock_guard lock(questions_->mutex);
        if (std::cmp_greater_equal(found - questions_->folders.begin(), questions_->answers))
            return FolderAccess::unknown;
    }
    return opener_(folder); // asked again: the user may have changed the answer
}

} // namespace vantry
