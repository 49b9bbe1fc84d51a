#pragma once

#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

/// What `block` answers in a copy of this process, so that it may give up rights or change its limits. A copy that dies
/// answers "ended by signal" and its number. Only from a process with one thread.
[[nodiscard]] inline std::string inChildProcess(const std::function<std::string()>& block) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        return "no pipe";
    std::fflush(nullptr); // or the copy prints it once more
    const pid_t child = fork();
    if (child < 0)
        return "no child process";
    if (child == 0) {
        close(ends[0]);
        const std::string answer = block();
        const bool told = write(ends[1], answer.data(), answer.size()) == static_cast<ssize_t>(answer.size());
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    std::string answer;
    std::array<char, 4096> buffer{};
    for (ssize_t length = 0; (length = read(ends[0], buffer.data(), buffer.size())) > 0;)
        answer.append(buffer.data(), static_cast<std::size_t>(length));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? "ended by signal " + std::to_string(WTERMSIG(status)) : answer;
}

} // namespace vantry
