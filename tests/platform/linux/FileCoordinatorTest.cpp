#include "platform/FileCoordinator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace vantry {

namespace fs = std::filesystem;

TEST(FileCoordinator, HandsOutThePathItself) {
    std::vector<fs::path> paths;
    const auto keep = [&](const fs::path& path) { paths.push_back(path); };
    EXPECT_TRUE(coordinateMoving("/place/report.log", keep));
    EXPECT_EQ(paths, std::vector<fs::path>{"/place/report.log"});
}

TEST(FileCoordinator, APlaceIsTheSameHoweverItsPathIsWritten) {
    const fs::path place = "/place/report.log";
    for (const char* same :
         {"/place/report.log", "/place/./report.log", "/place//x/../report.log", "//place/report.log/"})
        EXPECT_TRUE(isSamePlace(place, same)) << same;
    for (const char* other :
         {"/place/report.txt", "/other/report.log", "/place", "place/report.log", "report.log", "", "/"})
        EXPECT_FALSE(isSamePlace(place, other)) << other;
    EXPECT_FALSE(isSamePlace("report.log", "report.log"));
}

} // namespace vantry
