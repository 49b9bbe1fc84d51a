#pragma once

#include <QLabel>
#include <QStringList>

namespace vantry {

/// Plain text in a limited number of lines. Text that does not fit ends in an ellipsis, and the tooltip has all of it;
/// screen readers always get all of it.
class ElidingLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidingLabel(QWidget* parent, int mostLines = 1);

    /// What the tooltip and screen readers say while the whole text is shown. Without HTML.
    void setExplanation(const QString& explanation);

    /// Makes all digits equally wide (see FigureText.h). Only for labels of one line.
    void setMonospacedDigits(bool monospaced);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;
    /// The lines shown at `width`.
    [[nodiscard]] QStringList linesFor(int width) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int widthOfCells() const;
    void describe(bool isWhole);

    int mostLines_;
    QString explanation_;
    bool monospacedDigits_ = false;
};

} // namespace vantry
