#pragma once

#include "app/StoragePopoverViewController.h"
#include "shell/qt/BarWidget.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QPushButton;

namespace vantry {

class ElidingLabel;

/// The storage popover. It is a tool window, because screen readers do not find Qt popups. It closes on a click
/// outside, on Escape and when another window becomes active. Shows `PopoverContent` and reports to its controller.
class PopoverWindow : public QWidget {
    Q_OBJECT

public:
    PopoverWindow();

    void setController(std::weak_ptr<StoragePopoverViewController> controller);
    void render(const PopoverContent& content);
    /// Shows the popover below `item` (above it where there is no room), inside its screen, and gives it the keyboard.
    void openAt(const QRect& item);
    /// Whether it closed by itself a moment ago. A click on the status item right after that is the click that closed
    /// it, and must not open it again.
    [[nodiscard]] bool closedByItselfJustNow() const;

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void build();
    void catchClicksOutside();
    void closeByItself();

    // Each control is made together with the field that it shows and what it reports.
    ElidingLabel* makeLabel(LabelContent PopoverContent::*field, const Font& font, int mostLines = 1);
    QPushButton* makeButton(ButtonContent PopoverContent::*field, void (StoragePopoverViewController::*action)(),
                            FontWeight weight = FontWeight::regular);
    QCheckBox* makeCheckBox(CheckBoxContent PopoverContent::*field, void (StoragePopoverViewController::*action)(bool));
    QComboBox* makePopUp(PopUpContent PopoverContent::*field,
                         void (StoragePopoverViewController::*action)(std::optional<std::size_t>));
    QWidget* makeSeparator();
    QLayout* makeMetricRow(SolidSwatchView PopoverContent::*swatch, LabelContent PopoverContent::*title,
                           LabelContent PopoverContent::*value, std::string PopoverContent::*tooltip);
    QLayout* makeChoiceRow(QLabel* title, QComboBox* popUp);

    std::weak_ptr<StoragePopoverViewController> controller_;
    PopoverContent content_;
    std::vector<std::function<void(const PopoverContent&)>> renderers_; ///< one for each control
    QPushButton* cleanupButton_ = nullptr;                              ///< gets the focus when the popover opens
    bool closing_ = false;                                              ///< from closing until the next opening
    QElapsedTimer closedByItself_;                                      ///< invalid until it closed by itself once
    QTimer withoutKeyboard_; ///< delays closing: window managers take the focus away for a moment when another window
                             ///< closes
};

} // namespace vantry
