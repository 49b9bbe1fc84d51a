#pragma once

#include "app/CleanupWindowActions.h"
#include "shell/qt/CleanupControls.h"
#include "shell/qt/QtConversions.h"

#include <QFont>
#include <QFontMetrics>
#include <QWidget>
#include <string>
#include <vector>

class QPushButton;

namespace vantry {

/// The fonts of the rows and values derived from them, computed once for all rows.
struct CleanupRowType {
    explicit CleanupRowType(const QPaintDevice& device);

    QFont title, detail, strong, badge;
    QFontMetrics titleMetrics, detailMetrics, strongMetrics, badgeMetrics;
    int buttonWidth; ///< of the widest button that an avenue can have
};

/// A row of a card. It paints its texts itself, because hundreds of labels take long to build.
class CleanupRowView : public QWidget, public HasAccessibleRole {
    Q_OBJECT

public:
    /// `type` and `actions` outlive the row.
    CleanupRowView(const CleanupRowType& type, const CleanupRowActions& actions, QWidget* parent)
        : QWidget(parent),
          type_(type),
          actions_(actions) {}

    /// The controls that Tab reaches, from left to right.
    [[nodiscard]] virtual std::vector<QWidget*> controls() const = 0;
    /// Enables or disables the check box, if the row has one.
    virtual void setSelectionEnabled(bool /*enabled*/) {}
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::ListItem; }

protected:
    [[nodiscard]] Appearance appearance() const { return appearanceOf(*this); }
    [[nodiscard]] const CleanupRowType& type() const { return type_; }
    [[nodiscard]] const CleanupRowActions& actions() const { return actions_; }

private:
    const CleanupRowType& type_;
    const CleanupRowActions& actions_;
};

/// A file or folder that was found.
class CandidateRowView : public CleanupRowView {
    Q_OBJECT

public:
    using Content = CandidateRowContent;
    CandidateRowView(const CleanupRowType& type, const CleanupRowActions& actions, QWidget* parent);

    [[nodiscard]] static int heightFor(const Content& content, int width, const CleanupRowType& type);
    /// Whether both have the same height at any width.
    [[nodiscard]] static bool isAsHigh(const Content& one, const Content& other) {
        return one.reason == other.reason && one.note == other.note;
    }
    /// The same in every content that shows the same thing.
    [[nodiscard]] static const std::string& keyOf(const Content& content) { return content.identifier; }
    void setContent(const Content& content);
    [[nodiscard]] std::vector<QWidget*> controls() const override;
    void setSelectionEnabled(bool enabled) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void toggled(bool isOn);

    Content content_;
    bool selectionEnabled_ = true;
    RowCheckBox* checkBox_ = nullptr; ///< of a low-risk row
    SymbolButton* revealButton_;
};

/// An avenue of the catalog.
class AvenueRowView : public CleanupRowView {
    Q_OBJECT

public:
    using Content = AvenueRowContent;
    using CleanupRowView::CleanupRowView;

    [[nodiscard]] static int heightFor(const Content& content, int width, const CleanupRowType& type);
    [[nodiscard]] static bool isAsHigh(const Content& one, const Content& other) {
        return one.detail == other.detail && one.status == other.status && one.usage == other.usage;
    }
    [[nodiscard]] static const std::string& keyOf(const Content& content) { return content.title; }
    void setContent(const Content& content);
    [[nodiscard]] std::vector<QWidget*> controls() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    Content content_;
    QPushButton* button_ = nullptr; ///< where the avenue has one
};

} // namespace vantry
