#pragma once

#include "app/AppDelegate.h"
#include "app/StatusItemContent.h"

#include <QAbstractButton>
#include <QTimer>
#include <functional>

namespace vantry {

/// Replaces the tray where there is none: a narrow strip at the top right of the screen, above other windows, with the
/// bar in its natural shape. On X11 it reserves its space, so that maximised windows stay below it, if no other screen
/// is above. Screen readers see one button; the bar inside is silent.
class StripWindow : public QAbstractButton {
    Q_OBJECT

public:
    /// `closesPopover` is called on a left press. If it returns true, the press closed the popover and its release does
    /// nothing.
    StripWindow(std::function<bool()> closesPopover, std::function<void(MouseEvent)> pressed);

    void setContent(const StatusItemContent& content);
    /// Where the strip was placed. Qt may report a wrong position right after a window manager has framed the window.
    [[nodiscard]] QRect itemGeometry() const { return {placedAt_, size()}; }

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void place();
    void reserve();

    std::function<bool()> closesPopover_;
    std::function<void(MouseEvent)> pressed_;
    StatusItemContent content_;
    Qt::MouseButton pressedButton_ = Qt::NoButton; ///< none if the press went to the popover or closed it
    QPoint placedAt_;
    QTimer placement_;
};

} // namespace vantry
