#pragma once

#include "rendering/Canvas.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QKeyEvent>
#include <QRadioButton>
#include <QTimer>
#include <QWidget>
#include <array>
#include <string>

namespace vantry {

/// The accessible role of a widget that paints its own text. Name and description are the widget's accessible ones.
class HasAccessibleRole {
public:
    [[nodiscard]] virtual QAccessible::Role accessibleRole() const = 0;

protected:
    ~HasAccessibleRole() = default;
};

/// Call once, before the first such widget is shown.
void installCleanupAccessibility();

/// Two segments side by side, one of them selected. Keyboard and screen readers treat them as radio buttons.
class SegmentedControl : public QWidget {
    Q_OBJECT

public:
    explicit SegmentedControl(QWidget* parent);

    void render(const std::array<std::string, 2>& labels, int selected);
    [[nodiscard]] QRadioButton* segment(int index) const { return segments_.at(static_cast<std::size_t>(index)); }

signals:
    /// Emitted when the user selects a segment.
    void selected(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::array<QRadioButton*, 2> segments_{};
};

/// The small spinning wheel. It keeps its space in the layout while hidden.
class Spinner : public QWidget, public HasAccessibleRole {
    Q_OBJECT

public:
    explicit Spinner(QWidget* parent);

    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QTimer timer_;
    int step_ = 0;
};

/// A control of a row. It leaves the arrow keys to its parent.
template <class Control>
class RowControl : public Control {
public:
    using Control::Control;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
            event->ignore();
        else
            Control::keyPressEvent(event);
    }
};

/// A borderless button that shows a symbol.
class SymbolButton : public RowControl<QAbstractButton> {
    Q_OBJECT

public:
    SymbolButton(std::string symbolName, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string symbolName_;
};

/// A check box without a title that reacts to clicks in its whole rectangle.
class RowCheckBox : public RowControl<QCheckBox> {
    Q_OBJECT

public:
    using RowControl::RowControl;

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
};

/// Shows a symbol.
class SymbolWidget : public QWidget {
    Q_OBJECT

public:
    SymbolWidget(int side, SystemColor color, QWidget* parent);

    void setSymbol(const std::string& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int side_;
    SystemColor color_;
    std::string name_;
};

} // namespace vantry
