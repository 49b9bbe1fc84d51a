// What stands for a filesystem worker in tests. What it does is said by the last component of the folder that it is to
// look at.

#include "cleanup/scan/WorkerHost.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

constexpr const char* metrics = R"({"size":4096,"newestModificationTime":12.5,"complete":true})";
constexpr const char* children = R"({"names":["one","two"],"complete":true})";

/// One start of the double.
struct Job {
    fs::path folder;
    fs::path outputFile; ///< empty for one that writes to standard output

    [[nodiscard]] std::string payload() const { return outputFile.empty() ? metrics : children; }

    void write(const std::string& text) const {
        if (!outputFile.empty()) {
            std::ofstream(outputFile, std::ios::app) << text;
            return;
        }
        std::string_view rest = text;
        for (ssize_t length = 0; !rest.empty() && (length = ::write(STDOUT_FILENO, rest.data(), rest.size())) >= 0;)
            rest.remove_prefix(static_cast<std::size_t>(length));
    }
    void note(const char* file, const std::string& text) const { std::ofstream(folder / file, std::ios::app) << text; }
};

[[noreturn]] void hang() {
    for (;;)
        pause();
}

// The descriptors, and the lines that say how signals are treated and what there is no right to.
std::string state() {
    std::ostringstream text;
    for (int fd = 0; fd < 1000; ++fd)
        if (fcntl(fd, F_GETFD) >= 0)
            text << fd << ' ' << fs::read_symlink("/proc/self/fd/" + std::to_string(fd)).native() << '\n';
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("SigBlk:") || line.starts_with("SigIgn:") || line.starts_with("Threads:"))
            text << line << '\n';
    return text.str();
}

int perform(const Job& job) {
    const std::map<std::string, std::function<int()>> behaviours = {
        {"answers",
         [&] {
             job.write(job.payload());
             return EXIT_SUCCESS;
         }},
        {"hangs", [&]() -> int { hang(); }},
        {"hangs-while-writing",
         [&]() -> int {
             job.write(job.payload().substr(0, 10));
             hang();
         }},
        {"hangs-after-writing",
         [&]() -> int {
             job.write(job.payload());
             hang();
         }},
        {"ignores-the-request-to-end",
         [&]() -> int {
             std::signal(SIGTERM, SIG_IGN);
             hang();
         }},
        {"stops-itself",
         [&] {
             std::raise(SIGSTOP);
             return EXIT_SUCCESS;
         }},
        {"writes-without-end",
         [&]() -> int {
             for (const std::string piece(1 << 20, ' ');;)
                 job.write(piece);
         }},
        {"writes-much-more-than-a-pipe-holds",
         [&] {
             job.write(std::string(3 << 20, ' ') + job.payload());
             return EXIT_SUCCESS;
         }},
        {"writes-too-much",
         [&] {
             job.write(std::string(64 << 20, ' ') + job.payload());
             return EXIT_SUCCESS;
         }},
        {"closes-its-output-and-lives-on",
         [&]() -> int {
             job.write(job.payload());
             close(STDOUT_FILENO);
             hang();
         }},
        {"waits-to-be-killed",
         [&]() -> int {
             job.write(job.payload());
             job.note("process", std::to_string(getpid()) + "\n");
             hang();
         }},
        {"kills-itself",
         [&] {
             job.write(job.payload());
             std::raise(SIGKILL);
             return EXIT_SUCCESS;
         }},
        {"fails-after-a-good-answer",
         [&] {
             job.write(job.payload());
             return EXIT_FAILURE;
         }},
        {"writes-nothing", [&] { return EXIT_SUCCESS; }},
        {"writes-garbage",
         [&] {
             job.write("\xff\x01{]garbage");
             return EXIT_SUCCESS;
         }},
        {"writes-more-after-its-answer",
         [&] {
             job.write(job.payload() + "}");
             return EXIT_SUCCESS;
         }},
        {"answers-the-other-question",
         [&] {
             job.write(job.outputFile.empty() ? children : metrics);
             return EXIT_SUCCESS;
         }},
        {"leaves-the-folder",
         [&] {
             job.write(job.outputFile.empty() ? R"({"size":-1,"complete":true})"
                                              : R"({"names":[".."],"complete":true})");
             return EXIT_SUCCESS;
         }},
        {"leaves-a-process-behind",
         [&] {
             const pid_t child = fork();
             if (child == 0)
                 hang();
             job.note("process", std::to_string(child) + "\n");
             job.write(job.payload());
             return EXIT_SUCCESS;
         }},
        {"says-what-it-has",
         [&] {
             job.note("state", state());
             job.write(job.payload());
             return EXIT_SUCCESS;
         }},
    };
    job.note("started", "once\n");
    const auto behaviour = behaviours.find(job.folder.filename().native());
    return behaviour == behaviours.end() ? EXIT_FAILURE : behaviour->second();
}

/// The parent's side, in a process whose file is gone: measures `folder` with a worker of this very executable.
int measureWithoutOwnFile(const fs::path& folder, const std::string& replacement) {
    const fs::path own = fs::read_symlink("/proc/self/exe");
    fs::remove(own);
    if (!replacement.empty())
        fs::copy_file(replacement, own);
    const auto environment = WorkerHost::currentEnvironment();
    if (!environment)
        return EXIT_FAILURE;
    const auto answer = WorkerHost(*environment).directoryMetrics(folder, deadlineIn(std::chrono::seconds(30)));
    return answer.size == 4096 && answer.complete ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

} // namespace vantry

int main(int count, char** values) {
    using namespace vantry;
    // Whatever a test forgets does not stay for ever.
    constexpr unsigned longestLife = 60;
    alarm(longestLife);
    const std::string mode = count > 1 ? values[1] : "";
    if (count == 4 && mode == "--directory-metrics-worker")
        return perform({.folder = values[2], .outputFile = {}});
    if (count == 4 && mode == "--shallow-children-worker")
        return perform({.folder = values[2], .outputFile = values[3]});
    if (count == 4 && mode == "--measure-without-own-file")
        return measureWithoutOwnFile(values[2], values[3]);
    return EXIT_FAILURE;
}
