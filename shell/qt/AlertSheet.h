#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/qt/QtAppearance.h"

#include <QDialog>
#include <functional>

namespace vantry {

/// An alert of the warning style that belongs to a window, blocks it and stays with it.
class AlertSheet : public QDialog {
    Q_OBJECT

public:
    /// `answered` is called once, in a later turn of the event loop, also when the sheet is closed or deleted.
    AlertSheet(const QtAppearance& appearance, const AlertContent& alert, std::function<void(AlertAnswer)> answered,
               QWidget* window);
    ~AlertSheet() override;

    /// Where it belongs on its window. To be called before it is shown too: a place that is asked for while the window
    /// manager takes the sheet in may be lost.
    void place();
    void done(int result) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void answer(AlertAnswer answer);

    const QtAppearance& appearance_;
    std::function<void(AlertAnswer)> answered_; ///< empty once it has been called
};

} // namespace vantry
