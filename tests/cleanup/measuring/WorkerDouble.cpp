// Stands for a filesystem worker in tests. The name of the folder that it is given says what it does.

#include "cleanup/measuring/WorkerHost.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
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

// The open descriptors and the signal settings.
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

// What a worker does once it has written.
void endWell() {}
[[noreturn]] void endBadly() { std::_Exit(EXIT_FAILURE); }
[[noreturn]] void hang() {
    for (;;)
        pause();
}
void stop() { std::raise(SIGSTOP); }
void killItself() { std::raise(SIGKILL); }
void ignoreTheRequestToEnd() {
    std::signal(SIGTERM, SIG_IGN);
    hang();
}
void closeOutput() {
    close(STDOUT_FILENO);
    hang();
}

struct Behaviour {
    std::string written;
    void (*then)();
    std::size_t spacesBefore = 0;
};

int perform(const Job& job) {
    job.note("started", "once\n"); // first, as the host may end it at once
    const bool measures = job.outputFile.empty();
    const std::string answer = measures ? metrics : children;
    const std::string ofAnotherFolder =
        measures ? R"({"size":-1,"complete":true})" : R"({"names":[".."],"complete":true})";
    const std::map<std::string, Behaviour> behaviours = {
        {"answers", {answer, endWell}},
        {"hangs", {"", hang}},
        {"hangs-while-writing", {answer.substr(0, 10), hang}},
        {"hangs-after-writing", {answer, hang}},
        {"waits-to-be-killed", {answer, hang}},
        {"ignores-the-request-to-end", {"", ignoreTheRequestToEnd}},
        {"stops-itself", {"", stop}},
        {"kills-itself", {answer, killItself}},
        {"fails-after-a-good-answer", {answer, endBadly}},
        {"closes-its-output-and-lives-on", {answer, closeOutput}},
        {"writes-much-more-than-a-pipe-holds", {answer, endWell, 3 << 20}},
        {"writes-too-much", {answer, endWell, 64 << 20}},
        {"writes-nothing", {"", endWell}},
        {"writes-garbage", {"\xff\x01{]garbage", endWell}},
        {"writes-more-after-its-answer", {answer + "}", endWell}},
        {"answers-the-other-question", {measures ? children : metrics, endWell}},
        {"leaves-the-folder", {ofAnotherFolder, endWell}},
        {"leaves-a-process-behind", {answer, endWell}},
        {"says-what-it-has", {answer, endWell}},
    };
    const std::string name = job.folder.filename().native();
    for (const std::string piece(1 << 20, ' '); name == "writes-without-end";)
        job.write(piece);
    if (name == "says-what-it-has")
        job.note("state", state());
    if (name == "leaves-a-process-behind") {
        const pid_t child = fork();
        if (child == 0)
            hang();
        job.note("process", std::to_string(child) + "\n");
    }
    const auto behaviour = behaviours.find(name);
    if (behaviour == behaviours.end())
        return EXIT_FAILURE;
    job.write(std::string(behaviour->second.spacesBefore, ' ') + behaviour->second.written);
    if (name == "waits-to-be-killed")
        job.note("process", std::to_string(getpid()) + "\n");
    behaviour->second.then();
    return EXIT_SUCCESS;
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
    // A double that a test forgets ends by itself.
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
