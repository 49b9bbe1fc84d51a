#include "rendering/WallpaperPalette.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>

namespace vantry {

namespace {

/// `colors` colours, or noise that fills nearly every bin.
PicturePixels picture(unsigned colors) {
    std::mt19937 random(1);
    const auto byte = [&] { return static_cast<std::uint8_t>(random() % 256); };
    std::vector<PicturePixel> parts(colors);
    for (auto& part : parts)
        part = {byte(), byte(), byte()};
    PicturePixels pixels(pictureSide * pictureSide);
    for (auto& pixel : pixels)
        pixel = parts[random() % parts.size()];
    return pixels;
}

void palette(benchmark::State& state) {
    const auto pixels = picture(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) // NOLINT(clang-analyzer-deadcode.DeadStores): that is how a round is counted
        benchmark::DoNotOptimize(WallpaperThemeReader::paletteOfPixels(pixels, 7));
}

BENCHMARK(palette)->Arg(1)->Arg(12)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace vantry

BENCHMARK_MAIN();
