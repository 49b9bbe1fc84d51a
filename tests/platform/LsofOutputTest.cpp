#include "platform/LsofOutput.h"

#include <gtest/gtest.h>

#include <string>

namespace vantry {

using Paths = std::vector<std::filesystem::path>;

TEST(LsofOutput, HasThePathsOfTheLinesThatBeginWithN) {
    EXPECT_EQ(pathsInLsofOutput("p123\nfcwd\nn/\nf3\nn/Users/a/film one.mov\nf4\nn/dev/null\n"),
              (Paths{"/", "/Users/a/film one.mov", "/dev/null"}));
}

TEST(LsofOutput, IsNotDecoded) {
    const struct {
        std::string output;
        Paths paths;
    } cases[] = {
        {"", {}},
        {"\n\n\n", {}},
        {"n", {}},
        {"n\n", {}},
        {"n/no end of line", {"/no end of line"}},
        {"n/caf\xe9\nn/two", {"/caf\xe9", "/two"}},
        {"N/other\n n/indented\nfn/other\n", {}},
        {"n/with\rreturn\r\n", {"/with\rreturn\r"}},
        {std::string("n/a\0b\n", 6), {std::string("/a\0b", 4)}},
        {"n->0x1234 socket\nnlocalhost:1->localhost:2\n", {"->0x1234 socket", "localhost:1->localhost:2"}},
    };
    for (const auto& [output, paths] : cases)
        EXPECT_EQ(pathsInLsofOutput(output), paths) << output;
}

} // namespace vantry
