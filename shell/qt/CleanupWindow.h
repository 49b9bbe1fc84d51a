#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/qt/AlertSheet.h"
#include "shell/qt/CleanupControls.h"
#include "shell/qt/CleanupResultsView.h"
#include "shell/qt/QtAppearance.h"

#include <QPointer>
#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace vantry {

class NoticeBox;
class SummaryCard;

/// What the controls of the window report.
struct CleanupWindowActions {
    std::function<void()> scan;
    std::function<void(CleanupWindowMode)> modeChanged;
    std::function<void()> selectSuggested;
    std::function<void()> trash;
    std::function<void()> cancel; ///< Escape
    std::function<void()> closed; ///< when the window is hidden
    CleanupRowActions rows;
};

/// The "Free Up Space" window. It shows a content and reports what the user does.
class CleanupWindow : public QWidget, public HasAccessibleRole {
    Q_OBJECT

public:
    CleanupWindow(const QtAppearance& appearance, CleanupWindowActions actions);
    ~CleanupWindow() override;

    void render(const CleanupWindowContent& content);
    /// Shows the window, centred on its screen unless it is visible, in front and with the keyboard.
    void showInFront();
    void scrollResultsToTop();
    /// See `CleanupWindowShell::ask`.
    void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered);

    [[nodiscard]] CleanupResultsView& results() const { return *results_; }
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::Window; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void build();
    void showContent(const CleanupWindowContent& content);
    void applyColors();
    void centre();
    void keepKeyboard(QWidget* focused);
    QLabel* makeLabel(const Font& font, bool wraps = false);
    QPushButton* makeButton(std::function<void()> pressed);
    QWidget* makeHeader();
    QWidget* makeCards();
    QWidget* makeControls();
    QWidget* makeStatus();

    const QtAppearance& appearance_;
    const CleanupWindowActions actions_;
    CleanupWindowContent content_;
    QPointer<AlertSheet> sheet_;
    QPointer<QWidget> shade_;           ///< over the window while a sheet asks
    QPointer<QWidget> lostTheKeyboard_; ///< the control that was disabled while it had it

    QLabel* titleLabel_ = nullptr;
    QLabel* subtitleLabel_ = nullptr;
    SummaryCard* macStorageCard_ = nullptr;
    SummaryCard* foundCard_ = nullptr;
    SummaryCard* selectedCard_ = nullptr;
    SegmentedControl* modeControl_ = nullptr;
    QPushButton* scanButton_ = nullptr;
    Spinner* progressIndicator_ = nullptr;
    QPushButton* selectSuggestedButton_ = nullptr;
    QPushButton* trashButton_ = nullptr;
    NoticeBox* noticeBox_ = nullptr;
    QLabel* statusLabel_ = nullptr;
    QLabel* selectionLabel_ = nullptr;
    QWidget* scrollEdge_ = nullptr; ///< a hairline above results that are scrolled
    CleanupResultsView* results_ = nullptr;
};

} // namespace vantry
