#include "cleanup/gate/SafePaths.h"

#include "tests/cleanup/gate/CleanupValidationFixture.h"

namespace vantry::CleanupScanner {

namespace fs = std::filesystem;

class SafePaths : public CleanupValidationFixture {};

TEST_F(SafePaths, APathWithoutLinksHasNoneInAnyComponent) {
    const fs::path file = makeOld(logs / "file");
    fs::create_symlink("file", logs / "link");
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_directory_symlink("Library", home / "linked");
    for (const fs::path& path : {fs::path("/"), fs::path("//"), fs::path("/.."), root, file, logs / "", logs / ".",
                                 logs / "../Logs/file", logs / "link/../file"})
        EXPECT_TRUE(pathHasNoSymbolicLinkComponents(path)) << path;
    for (const fs::path& path :
         {fs::path(), fs::path("."), fs::path("file"), fs::relative(file), logs / "link", logs / "link/",
          logs / "broken", logs / "missing", logs / "missing/file", file / "below", home / "linked",
          home / "linked/Logs", home / "linked/Logs/file", logs / "link/below"})
        EXPECT_FALSE(pathHasNoSymbolicLinkComponents(path)) << path;
}

TEST_F(SafePaths, APathLeadsThroughALinkWhenAnyComponentIsOne) {
    makeOld(logs / "file");
    fs::create_symlink("file", logs / "link");
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_directory_symlink("Library", home / "linked");
    for (const fs::path& path : {logs / "link", logs / "link/", logs / "broken", home / "linked", home / "linked/Logs",
                                 home / "linked/missing", home / "linked/Logs/../Logs/file"})
        EXPECT_TRUE(leadsThroughLink(path)) << path;
    for (const fs::path& path : {fs::path("/"), root, logs / "file", logs / "missing/file", logs / "link/../file"})
        EXPECT_FALSE(leadsThroughLink(path)) << path;
}

TEST_F(SafePaths, ASafeCandidateLiesBelowItsRootAndIsNoLink) {
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_directory_symlink(downloads, logs / "link");
    makeOld(downloads / "file");
    const std::vector<std::tuple<fs::path, fs::path, bool>> cases{
        {logs / "file", logs, true}, // even if it does not exist
        {logs / "a/b/c", logs, true},
        {crashReports, logs, true},
        {logs / "./a", logs / "", true},
        {logs / "link/file", logs, true}, // judged by its path; it is not a link itself
        {logs, logs, false},
        {logs / "", logs, false},
        {logs / "a/..", logs, false},
        {logs / "../file", logs, false},
        {logs / "../Logs", logs, false},
        {logs, crashReports, false},
        {home / "Library/Logs2", logs, false},
        {home / "Library/Logs2/file", logs, false},
        {logs / "broken", logs, false},
        {logs / "link", logs, false},
        {logs / "link/", logs, false},
        {"", logs, false},
        {"/", "/", false},
        {"/file", "", true},
    };
    for (const auto& [candidate, folder, expected] : cases)
        EXPECT_EQ(isSafeCandidate(candidate, folder), expected) << candidate << " in " << folder;
}

TEST_F(SafePaths, ALinkIsDistinguishedFromItsTarget) {
    makeOld(logs / "file");
    fs::create_symlink("file", logs / "link");
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_symlink("loop", logs / "loop");
    fs::create_directory_symlink(downloads, logs / "folder");
    for (const char* name : {"link", "broken", "loop", "folder", "folder/"})
        EXPECT_TRUE(isSymbolicLink(logs / name)) << name;
    for (const char* name : {"file", "", ".", "missing", "missing/link", "link/below", "folder/missing"})
        EXPECT_FALSE(isSymbolicLink(logs / name)) << name;
}

} // namespace vantry::CleanupScanner
