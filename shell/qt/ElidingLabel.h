#pragma once

#include <QLabel>
#include <QStringList>

namespace vantry {

/// Plain text in a limited number of lines, the last of which ends in an ellipsis where the text does not fit; the
/// tooltip then has all of it, and a screen reader has it always.
class ElidingLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidingLabel(QWidget* parent, int mostLines = 1);

    /// Makes all digits equally wide (see FigureText.h). For one line.
    void setMonospacedDigits(bool monospaced);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;
    /// The text as it is shown at `width`.
    [[nodiscard]] QStringList linesFor(int width) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int widthOfCells() const;

    int mostLines_;
    bool monospacedDigits_ = false;
};

} // namespace vantry
