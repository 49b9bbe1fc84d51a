#pragma once

#include "rendering/Canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantry {

/// What a canvas can be asked for, as values.
namespace drawn {

struct Save {
    bool operator==(const Save&) const = default;
};

struct Restore {
    bool operator==(const Restore&) const = default;
};

struct Clip {
    Shape shape;

    bool operator==(const Clip&) const = default;
};

struct SetBlendMode {
    BlendMode mode = BlendMode::sourceOver;

    bool operator==(const SetBlendMode&) const = default;
};

struct Fill {
    Shape shape;
    Color color;

    bool operator==(const Fill&) const = default;
};

struct Stroke {
    Shape shape;
    Color color;
    double lineWidth = 0;

    bool operator==(const Stroke&) const = default;
};

struct FillGradient {
    Rect rect;
    std::vector<GradientStop> stops;
    GradientDirection direction = GradientDirection::leftToRight;

    bool operator==(const FillGradient&) const = default;
};

struct DrawText {
    std::string text;
    Font font;
    Color color;
    Rect rect;

    bool operator==(const DrawText&) const = default;
};

} // namespace drawn

using DrawCall = std::variant<drawn::Save, drawn::Restore, drawn::Clip, drawn::SetBlendMode, drawn::Fill, drawn::Stroke,
                              drawn::FillGradient, drawn::DrawText>;
using Drawing = std::vector<DrawCall>;

/// A canvas that remembers every call in order. Its font is made up: a line is 1.25 times as high as the font's size,
/// and every character `characterWidth` times as wide.
class RecordingCanvas : public Canvas {
public:
    Drawing calls;
    double characterWidth = 0.6;

    void save() override { calls.emplace_back(drawn::Save{}); }
    void restore() override { calls.emplace_back(drawn::Restore{}); }
    void clip(const Shape& shape) override { calls.emplace_back(drawn::Clip{shape}); }
    void setBlendMode(BlendMode mode) override { calls.emplace_back(drawn::SetBlendMode{mode}); }
    void fill(const Shape& shape, const Color& color) override { calls.emplace_back(drawn::Fill{shape, color}); }
    void stroke(const Shape& shape, const Color& color, double lineWidth) override {
        calls.emplace_back(drawn::Stroke{shape, color, lineWidth});
    }
    void fillGradient(const Rect& rect, std::span<const GradientStop> stops, GradientDirection direction) override {
        calls.emplace_back(drawn::FillGradient{rect, {stops.begin(), stops.end()}, direction});
    }
    void drawText(std::string_view text, const Font& font, const Color& color, const Rect& rect) override {
        calls.emplace_back(drawn::DrawText{std::string(text), font, color, rect});
    }
    [[nodiscard]] double boundingHeight(const Font& font) const override { return font.size * 1.25; }
    [[nodiscard]] double textWidth(std::string_view text, const Font& font) const override {
        std::size_t characters = 0;
        for (const char byte : text)
            characters += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U ? 1U : 0U;
        return font.size * characterWidth * static_cast<double>(characters);
    }

    /// The calls of one kind, in order.
    template <class Call>
    [[nodiscard]] std::vector<Call> all() const {
        std::vector<Call> found;
        for (const DrawCall& call : calls)
            if (const auto* wanted = std::get_if<Call>(&call))
                found.push_back(*wanted);
        return found;
    }
};

/// A call as words and numbers: what it is compared and printed by.
class DrawCallText {
public:
    explicit DrawCallText(const DrawCall& call) {
        std::visit([this](const auto& kind) { add(kind); }, call);
    }

    [[nodiscard]] bool isNear(const DrawCallText& other, double tolerance) const {
        if (words_ != other.words_ || numbers_.size() != other.numbers_.size())
            return false;
        for (std::size_t i = 0; i < numbers_.size(); ++i)
            if (!(std::abs(numbers_[i] - other.numbers_[i]) <= tolerance))
                return false;
        return true;
    }

    [[nodiscard]] std::string text() const {
        std::ostringstream out;
        out.precision(17);
        std::size_t next = 0;
        for (const char letter : words_)
            if (letter == '#')
                out << numbers_.at(next++);
            else
                out << letter;
        return out.str();
    }

private:
    void add(double number) {
        words_ += " #";
        numbers_.push_back(number);
    }
    void add(const Rect& rect) {
        words_ += " rect(";
        for (const double number : {rect.x, rect.y, rect.width, rect.height})
            add(number);
        words_ += ")";
    }
    void add(const RoundedRect& rounded) {
        words_ += " rounded(";
        add(rounded.radius);
        add(rounded.rect);
        words_ += ")";
    }
    void add(const Ellipse& ellipse) {
        words_ += " ellipse(";
        add(ellipse.rect);
        words_ += ")";
    }
    void add(const Shape& shape) {
        std::visit([this](const auto& kind) { add(kind); }, shape);
    }
    void add(const Rgba& color) {
        words_ += " rgba(";
        for (const double number : {color.red, color.green, color.blue, color.alpha})
            add(number);
        words_ += ")";
    }
    void add(const DynamicColor& color) {
        words_ += " role " + std::to_string(static_cast<int>(color.role)) + "(";
        add(color.alpha);
        words_ += ")";
    }
    void add(const Color& color) {
        std::visit([this](const auto& kind) { add(kind); }, color);
    }
    void add(const Font& font) {
        words_ += " font(";
        add(font.size);
        words_ += " weight " + std::to_string(static_cast<int>(font.weight));
        words_ += font.monospacedDigits ? " monospaced digits)" : ")";
    }
    void add(const drawn::Save& /*call*/) { words_ += "save"; }
    void add(const drawn::Restore& /*call*/) { words_ += "restore"; }
    void add(const drawn::Clip& call) {
        words_ += "clip";
        add(call.shape);
    }
    void add(const drawn::SetBlendMode& call) {
        words_ += call.mode == BlendMode::screen ? "blend screen" : "blend source over";
    }
    void add(const drawn::Fill& call) {
        words_ += "fill";
        add(call.shape);
        add(call.color);
    }
    void add(const drawn::Stroke& call) {
        words_ += "stroke";
        add(call.shape);
        add(call.color);
        add(call.lineWidth);
    }
    void add(const drawn::FillGradient& call) {
        words_ += call.direction == GradientDirection::leftToRight ? "gradient to the right" : "gradient to the bottom";
        add(call.rect);
        for (const GradientStop& stop : call.stops) {
            words_ += " at";
            add(stop.location);
            add(stop.color);
        }
    }
    void add(const drawn::DrawText& call) {
        words_ += "text \"" + call.text + "\"";
        add(call.font);
        add(call.color);
        add(call.rect);
    }

    std::string words_;
    std::vector<double> numbers_;
};

inline std::string drawingText(const Drawing& drawing) {
    std::string text;
    for (const DrawCall& call : drawing)
        text += "  " + DrawCallText(call).text() + "\n";
    return text;
}

/// Whether two drawings are the same calls in the same order. Numbers may differ by `tolerance`; the smallest one
/// allows for nothing but another order of the same additions.
inline testing::AssertionResult sameDrawing(const Drawing& actual, const Drawing& expected, double tolerance = 0) {
    for (std::size_t i = 0; i < std::max(actual.size(), expected.size()); ++i) {
        const bool both = i < actual.size() && i < expected.size();
        if (both && (tolerance > 0 ? DrawCallText(actual[i]).isNear(DrawCallText(expected[i]), tolerance)
                                   : actual[i] == expected[i]))
            continue;
        return testing::AssertionFailure()
               << "call " << i << "\n  was      " << (i < actual.size() ? DrawCallText(actual[i]).text() : "missing")
               << "\n  expected " << (i < expected.size() ? DrawCallText(expected[i]).text() : "nothing") << "\nin\n"
               << drawingText(actual);
    }
    return testing::AssertionSuccess();
}

/// For sums of the same numbers in another order.
inline constexpr double roundingOnly = 1e-12;

} // namespace vantry
