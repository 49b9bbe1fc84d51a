#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/qt/CleanupControls.h"
#include "shell/qt/QtAppearance.h"

#include <QFont>
#include <QWidget>

namespace vantry {

/// One figure with what it is above it and what it means below.
class SummaryCard : public QWidget, public HasAccessibleRole {
    Q_OBJECT

public:
    SummaryCard(const QtAppearance& appearance, QWidget* parent);

    void setContent(const SummaryCardContent& content);
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QtAppearance& appearance_;
    QFont titleFont_, valueFont_, detailFont_;
    SummaryCardContent content_;
};

/// A thin green frame, faintly filled, with a symbol and a text.
class NoticeBox : public QWidget, public HasAccessibleRole {
    Q_OBJECT

public:
    NoticeBox(const QtAppearance& appearance, QWidget* parent);

    void setContent(const std::string& symbolName, const std::string& text);
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QtAppearance& appearance_;
    QFont font_;
    std::string symbolName_;
    QString text_;
};

} // namespace vantry
