// Stands for a worker that reads property lists or searches for bundles in tests. The name of a file, or of a folder of
// applications, says what it does about it. At each start it notes the names of its files in "started", beside the
// first.

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

[[noreturn]] void writeWithoutEnd(char character) {
    for (const std::string piece(1 << 16, character);;)
        write(piece);
}

void answerFor(const fs::path& file) {
    const std::map<std::string, std::string> answers = {
        {"answers", "{\"Name\":\"a\"}\n"},
        {"answers-bit-by-bit", "{\"Name\":\"b\"}\n"},
        {"answers-at-length", "{\"Name\":\"c\"}\n"},
        {"is-no-list", "null\n"},
        {"identifies", "{\"CFBundleIdentifier\":\"a\"}\n"},
        {"completes", "complete\n"},
        {"hangs-in-its-answer", "{\"Name\":\"a"},
        {"ends-in-its-answer", "{\"Name\":\"a\"}"},
        {"writes-garbage", "\xff\x01{]garbage\n"},
        {"writes-an-empty-line", "\n"},
        {"tells-another-key", "{\"Other\":\"a\"}\n"},
    };
    const auto name = file.filename().native();
    if (name == "answers-at-length")
        write(std::string(500'000, ' '));
    if (const auto answer = answers.find(name); answer != answers.end())
        for (std::string_view rest = answer->second; !rest.empty();) {
            const std::size_t length = name == "answers-bit-by-bit" ? 1 : rest.size();
            write(rest.substr(0, length));
            rest.remove_prefix(length);
        }
    constexpr useconds_t pause = 400'000; // microseconds
    for (int i = 0; i < 4 && name == "takes-its-time"; ++i) {
        usleep(pause);
        write("null\n");
    }
    if (name == "waits-to-be-killed")
        std::ofstream(file.parent_path() / "process") << getpid() << '\n';
    if (name == "ignores-the-request-to-end")
        std::signal(SIGTERM, SIG_IGN);
    if (name == "closes-its-output")
        close(STDOUT_FILENO);
    if (name.starts_with("hangs") || name == "ignores-the-request-to-end" || name == "waits-to-be-killed" ||
        name == "closes-its-output")
        hang();
    if (name.starts_with("ends"))
        std::_Exit(EXIT_SUCCESS);
    if (name == "stops-itself" || name == "kills-itself")
        std::raise(name == "stops-itself" ? SIGSTOP : SIGKILL);
    if (name == "writes-a-line-without-end" || name == "writes-lines-without-end")
        writeWithoutEnd(name == "writes-lines-without-end" ? '\n' : ' ');
}

} // namespace

int main(int count, char** values) {
    // A double that a test forgets ends by itself.
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
