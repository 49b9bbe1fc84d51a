#include "cleanup/scan/DirectoryMetrics.h"

#include "platform/DirectoryWalk.h"
#include "platform/ItemKind.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::milliseconds longestMeasurement{500};
constexpr unsigned mostThreads = 4; // the kernel's locks leave little to more

std::shared_ptr<SpareThreads> allHelpers() {
    return std::make_shared<SpareThreads>(std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads) - 1);
}

DirectoryMetrics measured(const std::filesystem::path& path, Deadline deadline,
                          const std::shared_ptr<SpareThreads>& helpers) {
    const TreeTotals totals = walkTree(path, deadline, helpers);
    return {totals.allocatedBytes, totals.newestModification, totals.complete};
}

// What stands in a folder.
struct Child {
    std::string name;
    ItemKind kind = ItemKind::unknown;
    DirectoryMetrics metrics;
};

void measure(Child& child, const std::filesystem::path& folder, Deadline deadline,
             const std::shared_ptr<SpareThreads>& helpers) {
    const auto path = folder / child.name;
    child.kind = isMountPoint(path) ? ItemKind::other : quickItemKind(path);
    if (child.kind == ItemKind::regularFile || child.kind == ItemKind::folder)
        child.metrics = measured(path, deadline, helpers);
}

// Each thread takes the next child that none has taken yet. Once there is none left, it helps to walk the others.
void measureAll(std::vector<Child>& children, const std::filesystem::path& folder, Deadline deadline) {
    const auto helpers = allHelpers();
    std::atomic<std::size_t> next = 0;
    const auto takeSome = [&] {
        for (std::size_t i = next++; i < children.size(); i = next++)
            measure(children[i], folder, deadline, helpers);
    };
    std::vector<std::thread> threads;
    try {
        while (threads.size() + 1 < children.size() && helpers->take())
            threads.emplace_back([&] {
                takeSome();
                helpers->giveBack();
            });
    } catch (const std::system_error&) {
        helpers->giveBack(); // fewer threads do it all
    }
    takeSome();
    for (auto& thread : threads)
        thread.join();
}

void add(DirectoryMetrics& whole, const DirectoryMetrics& part) {
    if (__builtin_add_overflow(whole.size, part.size, &whole.size)) {
        whole.size = std::numeric_limits<std::int64_t>::max();
        whole.complete = false;
    }
    whole.newestModificationDate = std::max(whole.newestModificationDate, part.newestModificationDate);
    whole.complete = whole.complete && part.complete;
}

} // namespace

DirectoryMetrics directoryMetricsInProcess(const std::filesystem::path& folder, Deadline deadline) {
    return measured(folder, std::min(deadline, deadlineIn(longestMeasurement)), allHelpers());
}

ChildrenMetrics childrenMetricsInProcess(const std::filesystem::path& folder, Deadline deadline) {
    const auto limit = std::min(deadline, deadlineIn(longestMeasurement));
    auto names = allNames(folder);
    if (!names)
        return {};
    std::vector<Child> children;
    for (auto& name : *names)
        children.push_back({.name = std::move(name)});
    measureAll(children, folder, limit);

    ChildrenMetrics metrics{.children = {}, .whole = {.complete = !hasPassed(limit)}};
    for (auto& child : children) {
        // What is neither a file nor a folder, a link for instance, does not count; nor does what is mounted there.
        if (child.kind == ItemKind::none || child.kind == ItemKind::other)
            continue;
        add(metrics.whole, child.metrics);
        if (child.kind == ItemKind::folder && child.metrics.complete)
            metrics.children.emplace(std::move(child.name), child.metrics);
    }
    return metrics;
}

} // namespace vantry::CleanupScanner
