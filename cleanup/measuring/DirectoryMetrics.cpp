#include "cleanup/measuring/DirectoryMetrics.h"

#include "base/ByteSum.h"
#include "platform/DirectoryWalk.h"
#include "platform/ItemFacts.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::milliseconds longestMeasurement{500};
constexpr unsigned mostThreads = 4; // more threads only wait for the kernel's locks

std::shared_ptr<SpareThreads> allHelpers() {
    return std::make_shared<SpareThreads>(std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads) - 1);
}

DirectoryMetrics measured(const std::filesystem::path& path, Deadline deadline,
                          const std::shared_ptr<SpareThreads>& helpers) {
    const TreeTotals totals = walkTree(path, deadline, helpers);
    return {totals.allocatedBytes, totals.newestModification, totals.complete};
}

// The entries of a folder.
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

// Each thread takes the next child that is not taken yet. When none is left, it helps the others to walk theirs.
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
        helpers->giveBack(); // the remaining threads do the work
    }
    takeSome();
    for (auto& thread : threads)
        thread.join();
}

void add(DirectoryMetrics& whole, const DirectoryMetrics& part) {
    whole.complete = addBytes(whole.size, part.size) && whole.complete;
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
        // Links and other special items do not count, nor do mounted file systems.
        if (child.kind == ItemKind::none || child.kind == ItemKind::other)
            continue;
        add(metrics.whole, child.metrics);
        if (child.kind == ItemKind::folder && child.metrics.complete)
            metrics.children.emplace(std::move(child.name), child.metrics);
    }
    return metrics;
}

} // namespace vantry::CleanupScanner
