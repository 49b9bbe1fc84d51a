#include "cleanup/scan/DirectoryMetrics.h"

#include "platform/DirectoryWalk.h"
#include "platform/ItemKind.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <system_error>
#include <thread>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::milliseconds longestMeasurement{500};
constexpr unsigned mostThreads = 4; // the kernel's locks leave little to more

unsigned threadCount() { return std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads); }

// What stands in a folder.
struct Child {
    std::string name;
    ItemKind kind = ItemKind::unknown;
    DirectoryMetrics metrics;
};

void measure(Child& child, const std::filesystem::path& folder, Deadline deadline) {
    const auto path = folder / child.name;
    child.kind = quickItemKind(path);
    if (child.kind == ItemKind::regularFile || child.kind == ItemKind::folder)
        child.metrics = directoryMetricsInProcess(path, deadline);
}

// Each thread takes the next child that none has taken yet.
void measureAll(std::vector<Child>& children, const std::filesystem::path& folder, Deadline deadline) {
    std::atomic<std::size_t> next = 0;
    const auto takeSome = [&] {
        for (std::size_t i = next++; i < children.size(); i = next++)
            measure(children[i], folder, deadline);
    };
    std::vector<std::thread> helpers;
    try {
        for (std::size_t count = 1; count < std::min<std::size_t>(threadCount(), children.size()); ++count)
            helpers.emplace_back(takeSome);
    } catch (const std::system_error&) {
        // Fewer threads do it all.
    }
    takeSome();
    for (auto& helper : helpers)
        helper.join();
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
    const TreeTotals totals = walkTree(folder, std::min(deadline, deadlineIn(longestMeasurement)), threadCount());
    return {totals.allocatedBytes, totals.newestModification, totals.complete};
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
        // What is neither a file nor a folder, a link for instance, does not count.
        if (child.kind == ItemKind::none || child.kind == ItemKind::other)
            continue;
        add(metrics.whole, child.metrics);
        if (child.kind == ItemKind::folder && child.metrics.complete)
            metrics.children.emplace(std::move(child.name), child.metrics);
    }
    return metrics;
}

} // namespace vantry::CleanupScanner
