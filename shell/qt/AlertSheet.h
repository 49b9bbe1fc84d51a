#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <QDialog>
#include <functional>

namespace vantry {

/// A warning alert. It belongs to a window, blocks its input and moves with it.
class AlertSheet : public QDialog {
    Q_OBJECT

public:
    /// `answered` is called once, in a later turn of the event loop, also when the sheet is closed or deleted.
    AlertSheet(const AlertContent& alert, std::function<void(AlertAnswer)> answered, QWidget* window);
    ~AlertSheet() override;

    /// Moves the sheet to its place on the window. Call it before showing the sheet as well: window managers may ignore
    /// a move while they map the window.
    void place();
    void done(int result) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void answer(AlertAnswer answer);

    std::function<void(AlertAnswer)> answered_; ///< empty once it has been called
};

} // namespace vantry
