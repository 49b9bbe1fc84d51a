#pragma once

#include "rendering/Canvas.h"
#include "shell/qt/QtAppearance.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QRadioButton>
#include <QTimer>
#include <QWidget>
#include <array>
#include <string>

namespace vantry {

/// A widget that draws its text by itself, and what a screen reader takes it for; its accessible name and description
/// are the widget's.
class HasAccessibleRole {
public:
    [[nodiscard]] virtual QAccessible::Role accessibleRole() const = 0;

protected:
    ~HasAccessibleRole() = default;
};

/// To be called once, before the first such widget is shown.
void installCleanupAccessibility();

/// Two segments side by side, one of them selected: radio buttons to the keyboard and to screen readers.
class SegmentedControl : public QWidget {
    Q_OBJECT

public:
    SegmentedControl(const QtAppearance& appearance, QWidget* parent);

    void render(const std::array<std::string, 2>& labels, int selected);
    [[nodiscard]] QRadioButton* segment(int index) const { return segments_.at(static_cast<std::size_t>(index)); }

signals:
    /// By the user.
    void selected(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QtAppearance& appearance_;
    std::array<QRadioButton*, 2> segments_{};
};

/// The small wheel that turns while something is under way; takes its room also while it is hidden.
class Spinner : public QWidget, public HasAccessibleRole {
    Q_OBJECT

public:
    Spinner(const QtAppearance& appearance, QWidget* parent);

    void setSpinning(bool spins);
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    const QtAppearance& appearance_;
    QTimer timer_;
    int step_ = 0;
};

/// A borderless button that shows a symbol. The arrow keys are its parent's.
class SymbolButton : public QAbstractButton {
    Q_OBJECT

public:
    SymbolButton(const QtAppearance& appearance, std::string symbolName, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const QtAppearance& appearance_;
    std::string symbolName_;
};

/// A check box without a title, which is hit anywhere inside. The arrow keys are its parent's.
class RowCheckBox : public QCheckBox {
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

/// A symbol as a picture in a layout.
class SymbolWidget : public QWidget {
    Q_OBJECT

public:
    SymbolWidget(const QtAppearance& appearance, int side, SystemColor color, QWidget* parent);

    void setSymbol(const std::string& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QtAppearance& appearance_;
    int side_;
    SystemColor color_;
    std::string name_;
};

} // namespace vantry
