#pragma once

#include "base/Color.h"
#include "base/Geometry.h"

#include <QColor>
#include <QRectF>
#include <QString>
#include <QTextDocument>
#include <string_view>

class QWidget;

namespace vantry {

[[nodiscard]] inline QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// `text` as a tooltip. Escapes what Qt would take for HTML.
[[nodiscard]] inline QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text)
               ? QStringLiteral("<span style=\"white-space: pre\">") + text.toHtmlEscaped() + QStringLiteral("</span>")
               : text;
}

/// `text` as a tooltip that wraps.
[[nodiscard]] inline QString wrappedToolTip(const QString& text) {
    return QStringLiteral("<span style=\"white-space: pre-wrap\">") + text.toHtmlEscaped() + QStringLiteral("</span>");
}

[[nodiscard]] inline QRectF qRect(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

/// Light or dark, by the palette that `QtAppearance` gives the application.
[[nodiscard]] Appearance appearanceOf(const QWidget& widget);

/// The colour as it looks in `appearance`.
[[nodiscard]] QColor qColor(const Color& color, Appearance appearance);

} // namespace vantry
