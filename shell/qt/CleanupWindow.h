#pragma once

#include "app/CleanupWindowActions.h"
#include "cleanup/window/CleanupWindowShell.h"
#include "shell/qt/AlertSheet.h"
#include "shell/qt/CleanupControls.h"
#include "shell/qt/CleanupResultsView.h"

#include <QPointer>
#include <QWidget>
#include <functional>
#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace vantry {

/// The "Free Up Space" window. It shows a content and reports what the user does.
class CleanupWindow : public QWidget, public CleanupWindowShell, public HasAccessibleRole {
    Q_OBJECT

public:
    explicit CleanupWindow(CleanupWindowActions actions);

    void showCleanupWindow() override;
    [[nodiscard]] bool cleanupWindowIsShown() const override { return isVisible(); }
    void renderCleanupWindow(const CleanupWindowContent& content) override;
    void scrollCleanupResultsToTop() override { results_->scrollToTop(); }
    void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) override;

    [[nodiscard]] CleanupResultsView& results() const { return *results_; }
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::Window; }

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    using Renderer = std::function<void(const CleanupWindowContent&)>;

    void build();
    void showContent(const CleanupWindowContent& content);
    void centre();
    void keepKeyboard(QWidget* focused);
    void addRenderer(Renderer renderer) { renderers_.push_back(std::move(renderer)); }
    QLabel* makeLabel(std::string CleanupWindowContent::*field, const Font& font, SystemColor color);
    QPushButton* makeButton(CleanupButtonContent CleanupWindowContent::*field, std::function<void()> pressed);
    QWidget* makeHeader();
    QWidget* makeCards();
    QWidget* makeControls();
    QWidget* makeStatus();

    const CleanupWindowActions actions_;
    CleanupWindowContent content_;
    QPointer<AlertSheet> sheet_;
    QPointer<QWidget> shade_;           ///< over the window while a sheet asks
    QPointer<QWidget> lostTheKeyboard_; ///< the control that was disabled while it had the focus

    std::vector<Renderer> renderers_; ///< one for each control
    SegmentedControl* modeControl_ = nullptr;
    QWidget* scrollEdge_ = nullptr; ///< the line above the results while they are scrolled
    CleanupResultsView* results_ = nullptr;
};

} // namespace vantry
