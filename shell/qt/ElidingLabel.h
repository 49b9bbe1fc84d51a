#pragma once

#include <QLabel>

namespace vantry {

/// One line of plain text that ends in an ellipsis where it does not fit; the tooltip then has all of it, and a screen
/// reader has it always.
class ElidingLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidingLabel(QWidget* parent) : QLabel(parent) {}

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantry
