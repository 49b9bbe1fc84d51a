// What stands for a worker that reads property lists, or looks for bundles, in tests. What it does about a file, or
// about a folder of applications, is said by its name. It notes the names of the files that it was given at each start
// in "started", beside the first one.

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

void write(std::string_view text) {
    for (ssize_t length = 0; !text.empty() && (length = ::write(STDOUT_FILENO, text.data(), text.size())) >= 0;)
        text.remove_prefix(static_cast<std::size_t>(length));
}

[[noreturn]] void hang() {
    for (;;)
        pause();
}

void answerFor(const fs::path& file) {
    const std::map<std::string, std::function<void()>> behaviours = {
        {"answers", [] { write("{\"Name\":\"a\"}\n"); }},
        {"is-no-list", [] { write("null\n"); }},
        {"identifies", [] { write("{\"CFBundleIdentifier\":\"a\"}\n"); }},
        {"completes", [] { write("complete\n"); }},
        {"takes-its-time",
         [] {
             constexpr useconds_t pause = 400'000; // microseconds
             for (int i = 0; i < 4; ++i) {
                 usleep(pause);
                 write("null\n");
             }
         }},
        {"answers-bit-by-bit",
         [] {
             for (const char character : std::string("{\"Name\":\"b\"}\n"))
                 write({&character, 1});
         }},
        {"answers-at-length", [] { write(std::string(500'000, ' ') + "{\"Name\":\"c\"}\n"); }},
        {"hangs", [] { hang(); }},
        {"hangs-in-its-answer",
         [] {
             write("{\"Name\":\"a");
             hang();
         }},
        {"ignores-the-request-to-end",
         [] {
             std::signal(SIGTERM, SIG_IGN);
             hang();
         }},
        {"stops-itself", [] { std::raise(SIGSTOP); }},
        {"kills-itself", [] { std::raise(SIGKILL); }},
        {"ends", [] { std::_Exit(EXIT_SUCCESS); }},
        {"ends-in-its-answer",
         [] {
             write("{\"Name\":\"a\"}");
             std::_Exit(EXIT_SUCCESS);
         }},
        {"waits-to-be-killed",
         [&] {
             std::ofstream(file.parent_path() / "process") << getpid() << '\n';
             hang();
         }},
        {"closes-its-output",
         [] {
             close(STDOUT_FILENO);
             hang();
         }},
        {"writes-garbage", [] { write("\xff\x01{]garbage\n"); }},
        {"writes-an-empty-line", [] { write("\n"); }},
        {"tells-another-key", [] { write("{\"Other\":\"a\"}\n"); }},
        {"writes-a-line-without-end",
         [] {
             for (const std::string piece(1 << 16, ' ');;)
                 write(piece);
         }},
        {"writes-lines-without-end",
         [] {
             for (std::string lines(1 << 16, '\n');;)
                 write(lines);
         }},
    };
    if (const auto behaviour = behaviours.find(file.filename().native()); behaviour != behaviours.end())
        behaviour->second();
}

} // namespace

int main(int count, char** values) {
    // Whatever a test forgets does not stay for ever.
    constexpr unsigned longestLife = 60;
    alarm(longestLife);
    const std::vector<std::string> arguments(values + 1, values + count);
    if (arguments.size() > 2 && arguments[0] == "--bundle-identifiers-worker") {
        for (const auto& folder : std::vector<fs::path>(arguments.begin() + 2, arguments.end()))
            answerFor(folder);
        return EXIT_SUCCESS;
    }
    // One key, the only one that is asked for here.
    if (arguments.size() < 4 || arguments[0] != "--property-list-worker" || arguments[1] != "1" ||
        arguments[2] != "Name")
        return EXIT_FAILURE;
    const std::vector<fs::path> files(arguments.begin() + 3, arguments.end());
    std::ofstream note(files[0].parent_path() / "started", std::ios::app);
    for (const auto& file : files)
        note << file.filename().native() << ' ';
    note << std::endl;
    for (const auto& file : files)
        answerFor(file);
    return EXIT_SUCCESS;
}
