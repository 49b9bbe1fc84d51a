#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/qt/CleanupControls.h"

#include <QFont>
#include <QWidget>

namespace vantry {

/// Paints text that wraps. Screen readers get it as one static text.
class TextPanel : public QWidget, public HasAccessibleRole {
public:
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    TextPanel(QSizePolicy::Policy horizontal, int usualWidth, QWidget* parent);

private:
    int usualWidth_;
};

/// A figure with a title above it and an explanation below.
class SummaryCard : public TextPanel {
    Q_OBJECT

public:
    explicit SummaryCard(QWidget* parent);

    void setContent(const SummaryCardContent& content);
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QFont titleFont_, valueFont_, detailFont_;
    SummaryCardContent content_;
};

/// A symbol and a text in a thin green frame with a faint green fill.
class NoticeBox : public TextPanel {
    Q_OBJECT

public:
    explicit NoticeBox(QWidget* parent);

    void setContent(const std::string& symbolName, const std::string& text);
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QFont font_;
    std::string symbolName_;
    QString text_;
};

} // namespace vantry
