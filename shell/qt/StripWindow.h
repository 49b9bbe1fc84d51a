#pragma once

#include "app/AppDelegate.h"
#include "app/StatusItemContent.h"
#include "shell/qt/QtAppearance.h"

#include <QAbstractButton>
#include <QTimer>
#include <functional>

namespace vantry {

/// Stands in for the tray where there is none: a slim strip at the top right edge of the screen, above other windows,
/// that shows the bar in its natural shape. Maximised windows stay below it, where the window manager is asked by X11
/// and the screen reaches up to the edge of them all. One button with the item's accessibility text; the bar inside is
/// silent.
class StripWindow : public QAbstractButton {
    Q_OBJECT

public:
    /// `closesPopover` is asked when the left button goes down: a press that closes the popover opens nothing.
    StripWindow(const QtAppearance& appearance, std::function<bool()> closesPopover,
                std::function<void(MouseEvent)> pressed);

    void setContent(const StatusItemContent& content);
    /// Where the strip was put. What Qt says of a window that a window manager has just framed may be off.
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

    const QtAppearance& appearance_;
    std::function<bool()> closesPopover_;
    std::function<void(MouseEvent)> pressed_;
    StatusItemContent content_;
    Qt::MouseButton pressedButton_ = Qt::NoButton; ///< none for a press that the popover had, or that is spent
    QPoint placedAt_;
    QTimer placement_;
};

} // namespace vantry
