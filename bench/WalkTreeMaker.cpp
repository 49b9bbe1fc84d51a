// walk-make-tree: makes the trees that the walk is measured on.

#include "base/Format.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int usageError = 2;
constexpr off_t bytesPerFile = 4096; // allocated but never written, so that the disk has little to do

struct Shape {
    std::string root;
    long files = 0;
    long folders = 0;   // the root among them
    long branching = 0; // folders in a folder
};

[[noreturn]] void fail(const std::string& what) {
    std::perror(what.c_str());
    std::exit(EXIT_FAILURE);
}

void makeFile(int folder, const std::string& name) {
    const int fd = openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0)
        fail(name);
    if (fallocate(fd, 0, 0, bytesPerFile) != 0 && errno != EOPNOTSUPP)
        fail(name);
    close(fd);
}

// Breadth first: the upper levels are full, the files spread evenly over all folders.
void make(const Shape& shape) {
    std::deque<std::string> paths{shape.root};
    for (long made = 1, number = 0; !paths.empty(); ++number) {
        const std::string path = std::move(paths.front());
        paths.pop_front();
        if (mkdir(path.c_str(), 0700) != 0)
            fail(path);
        const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0)
            fail(path);
        const long files = shape.files / shape.folders + (number < shape.files % shape.folders ? 1 : 0);
        for (long i = 0; i < files; ++i)
            makeFile(folder, vantry::formatted("file-{:07}.dat", i));
        close(folder);
        for (long i = 0; i < shape.branching && made < shape.folders; ++i, ++made)
            paths.push_back(vantry::formatted("{}/folder-{:05}", path, i));
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count < 4 || count > 5) {
        std::fputs("Usage: walk-make-tree NEW-FOLDER FILES FOLDERS [FOLDERS-IN-A-FOLDER]\n"
                   "Makes FILES files of one block in FOLDERS folders, NEW-FOLDER being the first.\n",
                   stderr);
        return usageError;
    }
    make({.root = arguments[1],
          .files = std::max(0L, std::atol(arguments[2])),
          .folders = std::max(1L, std::atol(arguments[3])),
          .branching = std::max(1L, count > 4 ? std::atol(arguments[4]) : 10L)});
}
