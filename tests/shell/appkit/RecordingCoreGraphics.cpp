#include "tests/shell/appkit/RecordingCoreGraphics.h"

#include "shell/appkit/AppKitDrawing.h"

#include <CoreGraphics/CoreGraphics.h>
#include <algorithm>
#include <optional>
#include <string>
#include <utility>

// What the opaque references of Core Graphics point to.
struct CGContext {};
struct CGColorSpace {
    bool isSrgb;
};
struct CGColor {
    vantry::Rgba value;
};
struct CGPath {
    vantry::RoundedRect shape;
};
struct CGGradient {
    std::vector<vantry::GradientStop> stops;
};

namespace vantry {

namespace {

struct LinearGradient {
    std::vector<GradientStop> stops;
    CGPoint start;
    CGPoint end;
};

/// The state that SaveGState keeps. The path is not part of it.
struct GraphicsState {
    std::optional<Rgba> fillColor;
    std::optional<Rgba> strokeColor;
    double lineWidth = 1;
};

struct Record {
    Drawing calls;
    std::vector<std::pair<std::size_t, LinearGradient>> gradients; ///< with their positions among the calls
    GraphicsState state;
    std::vector<GraphicsState> saved;
    std::optional<Shape> path; ///< begun; empty until something is added
    bool pathIsBegun = false;
    int livingObjects = 0;
    std::string mistakes;
};

Record* record = nullptr;

Rect rectOf(CGRect rect) { return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}; }

void mistake(const char* what) { (record->mistakes += what) += "\n"; }

template <class Object>
auto* create(Object object) {
    ++record->livingObjects;
    return new Object(std::move(object));
}

template <class Object>
void release(Object* object) {
    if (!object)
        return;
    --record->livingObjects;
    delete object;
}

void addToPath(Shape shape) {
    if (!record->pathIsBegun || record->path)
        mistake("adds to a path that is not new");
    record->path = std::move(shape);
}

Shape takePath() {
    if (!record->path)
        mistake("paints without a path");
    record->pathIsBegun = false;
    return std::exchange(record->path, std::nullopt).value_or(Rect{});
}

Rgba painted(const std::optional<Rgba>& color) {
    if (!color)
        mistake("paints without a colour");
    return color.value_or(Rgba{});
}

bool spans(const Rect& rect, const LinearGradient& gradient, GradientDirection direction) {
    const bool right = direction == GradientDirection::leftToRight;
    return gradient.start.x == rect.x && gradient.start.y == rect.y &&
           gradient.end.x == (right ? rect.maxX() : rect.x) && gradient.end.y == (right ? rect.y : rect.maxY());
}

} // namespace

RecordingCoreGraphics::RecordingCoreGraphics() { record = new Record; }

RecordingCoreGraphics::~RecordingCoreGraphics() { delete std::exchange(record, nullptr); }

Drawing RecordingCoreGraphics::calls() const {
    Drawing calls = record->calls;
    for (auto gradient = record->gradients.rbegin(); gradient != record->gradients.rend(); ++gradient) {
        const auto& [place, drawing] = *gradient;
        const auto* clip = place >= 2 ? std::get_if<drawn::Clip>(&calls[place - 1]) : nullptr;
        const auto* rect = clip ? std::get_if<Rect>(&clip->shape) : nullptr;
        if (!rect || !std::holds_alternative<drawn::Save>(calls[place - 2]) || place == calls.size() ||
            !std::holds_alternative<drawn::Restore>(calls[place])) {
            mistake("draws a gradient without a clip of its own");
            continue;
        }
        const Rect area = *rect;
        for (const auto direction : {GradientDirection::leftToRight, GradientDirection::topToBottom})
            if (spans(area, drawing, direction)) {
                const auto begin = calls.begin() + static_cast<std::ptrdiff_t>(place) - 2;
                calls.insert(calls.erase(begin, begin + 3), drawn::FillGradient{area, drawing.stops, direction});
                break;
            }
    }
    return calls;
}

int RecordingCoreGraphics::livingObjects() const { return record->livingObjects; }

std::string RecordingCoreGraphics::mistakes() const { return record->mistakes; }

Rgba colorOfRole(SystemColor role) {
    const double shade = static_cast<double>(static_cast<int>(role) + 1) / 32;
    return {shade, 1 - shade, shade / 2, 0.5};
}

Rgba drawnColor(SystemColor role) { return colorOfRole(role); }

void drawTextLine(std::string_view text, const Font& font, const Rgba& color, const Rect& rect) {
    record->calls.emplace_back(drawn::DrawText{std::string(text), font, color, rect});
}

double fontBoundingHeight(const Font& font) { return RecordingCanvas().boundingHeight(font); }

double textLineWidth(std::string_view text, const Font& font) { return RecordingCanvas().textWidth(text, font); }

} // namespace vantry

using namespace vantry;

extern "C" {

const CFStringRef kCGColorSpaceSRGB = reinterpret_cast<CFStringRef>("kCGColorSpaceSRGB");

CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name) { return create(CGColorSpace{name == kCGColorSpaceSRGB}); }

void CGColorSpaceRelease(CGColorSpaceRef space) { release(space); }

CGColorRef CGColorCreateSRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    return create(CGColor{{red, green, blue, alpha}});
}

void CGColorRelease(CGColorRef color) { release(color); }

// Core Graphics aborts when the radius is larger than half a side.
CGPathRef CGPathCreateWithRoundedRect(CGRect rect, CGFloat cornerWidth, CGFloat cornerHeight,
                                      const CGAffineTransform* transform) {
    if (cornerWidth < 0 || cornerHeight < 0 || 2 * cornerWidth > rect.size.width ||
        2 * cornerHeight > rect.size.height || transform)
        mistake("rounds corners that do not fit");
    return create(CGPath{{rectOf(rect), std::max(cornerWidth, cornerHeight)}});
}

void CGPathRelease(CGPathRef path) { release(path); }

CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count) {
    if (!space->isSrgb)
        mistake("makes a gradient in another colour space");
    CGGradient gradient;
    for (size_t stop = 0; stop < count; ++stop) {
        const CGFloat* color = components + 4 * stop;
        gradient.stops.push_back({Rgba{color[0], color[1], color[2], color[3]}, locations[stop]});
    }
    return create(std::move(gradient));
}

void CGGradientRelease(CGGradientRef gradient) { release(gradient); }

void CGContextSaveGState(CGContextRef) {
    record->saved.push_back(record->state);
    record->calls.emplace_back(drawn::Save{});
}

void CGContextRestoreGState(CGContextRef) {
    record->calls.emplace_back(drawn::Restore{});
    if (record->saved.empty())
        return mistake("restores what was not saved");
    record->state = record->saved.back();
    record->saved.pop_back();
}

void CGContextBeginPath(CGContextRef) {
    record->path.reset();
    record->pathIsBegun = true;
}

void CGContextAddRect(CGContextRef, CGRect rect) { addToPath(rectOf(rect)); }

void CGContextAddPath(CGContextRef, CGPathRef path) { addToPath(path->shape); }

void CGContextAddEllipseInRect(CGContextRef, CGRect rect) { addToPath(Ellipse{rectOf(rect)}); }

void CGContextClip(CGContextRef) { record->calls.emplace_back(drawn::Clip{takePath()}); }

void CGContextClipToRect(CGContextRef, CGRect rect) { record->calls.emplace_back(drawn::Clip{rectOf(rect)}); }

void CGContextSetBlendMode(CGContextRef, CGBlendMode mode) {
    if (mode != kCGBlendModeNormal && mode != kCGBlendModeScreen)
        mistake("blends in another way");
    record->calls.emplace_back(
        drawn::SetBlendMode{mode == kCGBlendModeScreen ? BlendMode::screen : BlendMode::sourceOver});
}

void CGContextSetFillColorWithColor(CGContextRef, CGColorRef color) { record->state.fillColor = color->value; }

void CGContextSetStrokeColorWithColor(CGContextRef, CGColorRef color) { record->state.strokeColor = color->value; }

void CGContextSetLineWidth(CGContextRef, CGFloat width) { record->state.lineWidth = width; }

void CGContextFillRect(CGContextRef, CGRect rect) {
    record->calls.emplace_back(drawn::Fill{rectOf(rect), painted(record->state.fillColor)});
}

void CGContextFillPath(CGContextRef) {
    record->calls.emplace_back(drawn::Fill{takePath(), painted(record->state.fillColor)});
}

void CGContextStrokePath(CGContextRef) {
    record->calls.emplace_back(drawn::Stroke{takePath(), painted(record->state.strokeColor), record->state.lineWidth});
}

void CGContextDrawLinearGradient(CGContextRef, CGGradientRef gradient, CGPoint startPoint, CGPoint endPoint,
                                 CGGradientDrawingOptions options) {
    if (options != 0)
        mistake("draws a gradient beyond its ends");
    record->gradients.push_back({record->calls.size(), {gradient->stops, startPoint, endPoint}});
}

} // extern "C"
