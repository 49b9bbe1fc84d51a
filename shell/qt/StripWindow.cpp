#include "shell/qt/StripWindow.h"

#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"
#include "shell/qt/X11Strut.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace vantry {

namespace {

constexpr int stripHeight = 24;

} // namespace

StripWindow::StripWindow(std::function<bool()> closesPopover, std::function<void(MouseEvent)> pressed)
    : closesPopover_(std::move(closesPopover)),
      pressed_(std::move(pressed)) {
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_X11NetWmWindowTypeDock); // on every desktop and in no task list
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_AlwaysShowToolTips); // it is never the active window
    setWindowTitle(QStringLiteral("Ombrel"));
    connect(this, &QAbstractButton::clicked, this,
            [this] { pressed_(MouseEvent::leftMouseUp); }); // pressed by a screen reader
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &StripWindow::place);
    // A window manager may announce the new work area before the new list of windows, and both are needed.
    constexpr std::chrono::milliseconds untilBothAreTold{100};
    placement_.setSingleShot(true);
    placement_.setInterval(untilBothAreTold);
    connect(&placement_, &QTimer::timeout, this, &StripWindow::place);
    const auto follow = [this](const QScreen* screen) {
        connect(screen, &QScreen::availableGeometryChanged, &placement_, qOverload<>(&QTimer::start));
    };
    std::ranges::for_each(QGuiApplication::screens(), follow);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, follow);
}

void StripWindow::setContent(const StatusItemContent& content) {
    content_ = content;
    setToolTip(plainToolTip(qString(content.tooltip)));
    setAccessibleDescription(qString(content.tooltip));
    setAccessibleName(qString(content.accessibilityLabel.empty() ? content.tooltip : content.accessibilityLabel));
    if (QSize size(static_cast<int>(content.length), stripHeight); size != this->size()) {
        setFixedSize(size);
        place();
    }
    update();
}

void StripWindow::place() {
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        // Space that a strip reserved is no reason to move: two strips would push each other down.
        const QPoint origin = screen->geometry().topLeft();
        const auto top = origin.y() + std::lround((area.top() - origin.y()) * screen->devicePixelRatio());
        const bool stays = isVisible() && isReservedByStrip(static_cast<int>(top));
        placedAt_ = {area.right() + 1 - width(), stays ? placedAt_.y() : area.top()};
        move(placedAt_);
        reserve();
    }
}

// Without this the strip would cover the close button of a maximised window.
void StripWindow::reserve() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen || !isVisible())
        return;
    const QPoint origin = screen->geometry().topLeft(); // the same in points and in pixels
    const bool isAtEdge = origin.y() == 0;
    const qreal scale = screen->devicePixelRatio();
    const QRectF inPixels(origin + QPointF(placedAt_ - origin) * scale, QSizeF(size()) * scale);
    reserveTopEdge(winId(), isAtEdge ? inPixels.toAlignedRect() : QRect());
}

void StripWindow::showEvent(QShowEvent* event) {
    QAbstractButton::showEvent(event);
    reserve();
}

void StripWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Appearance appearance = appearanceOf(*this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    QtCanvas canvas(painter, appearance);
    content_.view.draw(canvas, {static_cast<double>(width()), static_cast<double>(height())}, appearance);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    } else {
        const QColor line = qColor(DynamicColor{SystemColor::separator}, appearance);
        painter.fillRect(QRect(0, 0, 1, height()), line);
        painter.fillRect(QRect(1, height() - 1, width() - 1, 1), line);
    }
}

void StripWindow::mousePressEvent(QMouseEvent* event) {
    const bool spent = event->button() == Qt::LeftButton && closesPopover_();
    pressedButton_ = spent ? Qt::NoButton : event->button();
    event->accept();
}

// A release does not count as a click when its press went to the open popover, however long the button was held.
void StripWindow::mouseReleaseEvent(QMouseEvent* event) {
    const bool clicked = std::exchange(pressedButton_, Qt::NoButton) == event->button();
    if (clicked && rect().contains(event->position().toPoint())) {
        if (event->button() == Qt::LeftButton)
            pressed_(MouseEvent::leftMouseUp);
        else if (event->button() == Qt::RightButton)
            pressed_(MouseEvent::rightMouseUp);
    }
    event->accept();
}

void StripWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter: pressed_(MouseEvent::leftMouseUp); break;
    case Qt::Key_Menu: pressed_(MouseEvent::rightMouseUp); break;
    default: QAbstractButton::keyPressEvent(event);
    }
}

} // namespace vantry
