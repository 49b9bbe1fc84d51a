// One target for libFuzzer: the one after which the program is called.

#include "tests/fuzz/Targets.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace {

void (*target)(std::string_view bytes) = nullptr;

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): libFuzzer looks for this name
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** arguments) {
    const std::filesystem::path program = (*arguments)[0];
    for (const auto& each : vantry::fuzzTargets())
        if (program.filename() == each.name)
            target = each.run;
    if (!target) {
        std::fprintf(stderr, "%s is not the name of a target\n", program.c_str());
        std::exit(EXIT_FAILURE);
    }
    return 0;
}

// NOLINTNEXTLINE(readability-identifier-naming): and for this
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    target({reinterpret_cast<const char*>(bytes), count});
    return 0;
}
