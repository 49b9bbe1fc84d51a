#pragma once

#include "app/StoragePopoverViewController.h"
#include "shell/qt/BarWidget.h"
#include "shell/qt/QtAppearance.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace vantry {

/// The storage popover: a window of its own kind, not a Qt popup, which screen readers would not find. It closes on a
/// click outside, on Escape and when another window becomes active. Shows `PopoverContent` and reports to its
/// controller.
class PopoverWindow : public QWidget {
    Q_OBJECT

public:
    explicit PopoverWindow(const QtAppearance& appearance);

    void setController(std::weak_ptr<StoragePopoverViewController> controller);
    void render(const PopoverContent& content);
    /// Shows the popover below `item` (above it where there is no room), inside its screen, and gives it the keyboard.
    void openAt(const QRect& item);
    /// Whether it closed by itself a moment ago: then a click on the item was that click outside, and is spent.
    [[nodiscard]] bool closedByItselfJustNow() const;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    using SwatchWidget = ViewWidget<SolidSwatchView>;
    struct MetricRow {
        SwatchWidget* swatch;
        QLabel* title;
        QLabel* value;
    };

    void build();
    void catchClicksOutside();
    void closeByItself();
    void connectControls();
    void applyColors();
    QLabel* makeLabel(const Font& font, int mostLines = 1);
    QWidget* makeHeader();
    QWidget* makeMetrics();
    MetricRow makeMetricRow(SolidSwatchView::Kind kind);
    QWidget* makeChoiceRow(QLabel* title, QComboBox* popUp);
    QWidget* makeCommands();
    QPushButton* makeButton(FontWeight weight = FontWeight::regular);
    template <class Action>
    void report(Action action) {
        if (const auto controller = controller_.lock())
            action(*controller);
    }

    const QtAppearance& appearance_;
    std::weak_ptr<StoragePopoverViewController> controller_;
    PopoverContent content_;
    bool closing_ = false;         ///< from when it is told to close until it is opened again
    QElapsedTimer closedByItself_; ///< valid once that has happened
    QTimer withoutKeyboard_;       ///< window managers take it away for a moment when another window goes

    QLabel* titleLabel_ = nullptr;
    QLabel* summaryLabel_ = nullptr;
    BarWidget* barView_ = nullptr;
    MetricRow used_{};
    MetricRow available_{};
    QLabel* detailLabel_ = nullptr;
    QLabel* errorLabel_ = nullptr;
    QLabel* updateLabel_ = nullptr;
    QPushButton* cleanupButton_ = nullptr;
    QWidget* separator_ = nullptr;
    QCheckBox* launchAtLoginButton_ = nullptr;
    QCheckBox* showPercentageButton_ = nullptr;
    QLabel* barStyleLabel_ = nullptr;
    QComboBox* barStylePopUp_ = nullptr;
    QLabel* segmentSizingLabel_ = nullptr;
    QComboBox* segmentSizingPopUp_ = nullptr;
    QPushButton* refreshButton_ = nullptr;
    QPushButton* settingsButton_ = nullptr;
    QPushButton* quitButton_ = nullptr;
};

} // namespace vantry
