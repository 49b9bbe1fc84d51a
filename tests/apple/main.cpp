#include "tests/apple/Program.h"

#include <gtest/gtest.h>

#include <cstdio>

// Whatever is neither a worker's nor an argument of the test framework is refused, or the tests would start themselves
// without end.
int main(int count, char** values) {
    vantry::apple::runWorkerIfRequested(count, values);
    testing::InitGoogleTest(&count, values);
    if (count > 1) {
        std::fprintf(stderr, "unknown argument: %s\n", values[1]);
        return EXIT_FAILURE;
    }
    const vantry::apple::Program program(count, values);
    return RUN_ALL_TESTS();
}
