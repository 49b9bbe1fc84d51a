#pragma once

#include "base/Color.h"
#include "platform/Picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

namespace vantry::naive {

/// The palette of a picture in a second, slow and simple implementation that uses nothing of the product, for
/// comparison.
class Palette {
public:
    explicit Palette(std::vector<PicturePixel> pixels) : pixels_(std::move(pixels)) {}

    [[nodiscard]] std::vector<Rgba> colors(int count) {
        countBins();
        if (bins_.empty())
            return {};
        limit_ = std::min(static_cast<int>(bins_.size()), count > 2 ? count : 2);
        pickAccents();
        for (const Bin& bin : bins_)
            if (size() < limit_ && smallestDistance(bin) > 0.018)
                chosen_.push_back(bin);
        while (size() < limit_ && fillOne()) {
        }
        return inOrder();
    }

private:
    struct Bin {
        std::array<int, 3> sums{};
        double weight = 0;
        double vibrance = 0;

        [[nodiscard]] double average(int i) const { return sums[static_cast<std::size_t>(i)] / (255 * weight); }
    };
    struct Hue {
        double h, s, v;
    };

    void countBins() {
        std::map<int, Bin> counted;
        for (const PicturePixel& pixel : pixels_) {
            if (pixel.alpha / 255.0 <= 0.5)
                continue;
            const std::array<double, 3> c{pixel.red / 255.0, pixel.green / 255.0, pixel.blue / 255.0};
            int key = 0;
            for (const double one : c)
                key = key * 256 / 16 + std::min(15, std::max(0, int(std::floor(one * 15))));
            const double v = *std::ranges::max_element(c);
            const double low = *std::ranges::min_element(c);
            const double s = v > 0 ? (v - low) / v : 0;
            Bin& bin = counted[key];
            bin.sums = {bin.sums[0] + pixel.red, bin.sums[1] + pixel.green, bin.sums[2] + pixel.blue};
            bin.weight += 1;
            bin.vibrance += 0.18 + 3.4 * s * s + 0.65 * s * std::sqrt(v);
        }
        for (const auto& [key, bin] : counted)
            bins_.push_back(bin);
        std::stable_sort(bins_.begin(), bins_.end(), [](const Bin& a, const Bin& b) { return a.weight > b.weight; });
    }

    static Hue hue(double r, double g, double b) {
        const double v = std::max(r, std::max(g, b));
        const double range = v - std::min(r, std::min(g, b));
        if (range == 0)
            return {0, 0, v};
        double sixths = v == r ? (g - b) / range : v == g ? 2 + (b - r) / range : 4 + (r - g) / range;
        if (sixths < 0)
            sixths += 6;
        return {sixths / 6, range / v, v};
    }
    static Hue hue(const Bin& bin) { return hue(bin.average(0), bin.average(1), bin.average(2)); }

    void pickAccents() {
        const auto pick = [&](auto inFamily) {
            int best = -1;
            double bestScore = 0;
            for (int i = 0; i < static_cast<int>(bins_.size()); ++i) {
                const Bin& bin = bins_[static_cast<std::size_t>(i)];
                const Hue c = hue(bin);
                const double score = std::sqrt(bin.weight) * (2.2 * c.s + 0.35) * (c.v + 0.4);
                if (inFamily(c.h) && c.s >= 0.24 && c.v >= 0.16 && bin.weight >= 2 && (best < 0 || score > bestScore)) {
                    best = i;
                    bestScore = score;
                }
            }
            if (best >= 0)
                chosen_.push_back(bins_[static_cast<std::size_t>(best)]);
        };
        pick([](double h) { return h >= 0.955 || h <= 0.075; });
        pick([](double h) { return 0.9 <= h && h < 0.955; });
        pick([](double h) { return 0.69 <= h && h < 0.9; });
    }

    [[nodiscard]] double smallestDistance(const Bin& bin) const {
        double smallest = 1000;
        for (const Bin& other : chosen_) {
            double sum = 0;
            for (int i = 0; i < 3; ++i)
                sum += std::pow(bin.average(i) - other.average(i), 2);
            smallest = std::min(smallest, sum);
        }
        return smallest;
    }

    bool fillOne() {
        const Bin* best = nullptr;
        double bestScore = 0;
        for (const Bin& bin : bins_) {
            const double d = smallestDistance(bin);
            const double score = (d + 0.04) * std::sqrt(bin.weight + 1.8 * bin.vibrance);
            if (d > 0.01 && (!best || score > bestScore)) {
                best = &bin;
                bestScore = score;
            }
        }
        if (best)
            chosen_.push_back(*best);
        return best != nullptr;
    }

    [[nodiscard]] std::vector<Rgba> inOrder() const {
        std::vector<Hue> strong;
        std::vector<Hue> grey;
        for (const Bin& bin : chosen_) {
            Hue c = hue(bin);
            c.s = c.s < 0.08 ? c.s : std::min(c.s * 1.32 + 0.09, 1.0);
            c.v = std::min(std::max(c.v * 1.1, 0.46), 0.98);
            (c.s >= 0.1 ? strong : grey).push_back(c);
        }
        std::stable_sort(strong.begin(), strong.end(), [](const Hue& a, const Hue& b) { return a.h < b.h; });
        std::stable_sort(grey.begin(), grey.end(), [](const Hue& a, const Hue& b) { return a.v < b.v; });
        strong.insert(strong.end(), grey.begin(), grey.end());
        std::vector<Rgba> colors;
        for (const Hue& c : strong)
            colors.push_back(color(c));
        return colors;
    }

    // By the distance of the hue from each of the primaries.
    static Rgba color(const Hue& c) {
        const auto component = [&](double offset) {
            const double k = std::fmod(offset + c.h * 6, 6);
            return c.v - c.v * c.s * std::max(0.0, std::min({k, 4 - k, 1.0}));
        };
        return {component(5), component(3), component(1), 1};
    }

    [[nodiscard]] int size() const { return static_cast<int>(chosen_.size()); }

    std::vector<PicturePixel> pixels_;
    std::vector<Bin> bins_;
    std::vector<Bin> chosen_;
    int limit_ = 0;
};

} // namespace vantry::naive
