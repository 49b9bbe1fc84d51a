#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/qt/CleanupControls.h"
#include "shell/qt/QtAppearance.h"

#include <QFont>
#include <QFontMetrics>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

class QPushButton;

namespace vantry {

/// What the controls of the rows report.
struct CleanupRowActions {
    std::function<void(const std::string& identifier, bool isOn)> selectionChanged;
    std::function<void(const std::string& identifier)> revealed;
    std::function<void(CleanupAvenue::Action)> avenueAction;
};

/// The fonts of the rows and what follows from them, once for all rows.
struct CleanupRowType {
    explicit CleanupRowType(const QPaintDevice& device);

    QFont title, detail, strong, badge;
    QFontMetrics titleMetrics, detailMetrics, strongMetrics, badgeMetrics;
    int buttonWidth; ///< of the widest button that an avenue can have
};

/// A row of a card. It draws its texts by itself: hundreds of labels would take long to build.
class CleanupRowView : public QWidget, public HasAccessibleRole {
    Q_OBJECT

public:
    CleanupRowView(const QtAppearance& appearance, const CleanupRowType& type, const CleanupRowActions& actions,
                   QWidget* parent);

    /// What the keyboard can reach, from left to right.
    [[nodiscard]] virtual std::vector<QWidget*> controls() const = 0;
    /// Whether the check box can be used, if the row has one.
    virtual void setSelectionEnabled(bool /*enabled*/) {}
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::ListItem; }

protected:
    [[nodiscard]] Appearance appearance() const { return appearance_.current(); }
    [[nodiscard]] const QtAppearance& appearanceSource() const { return appearance_; }
    [[nodiscard]] const CleanupRowType& type() const { return type_; }
    [[nodiscard]] const CleanupRowActions& actions() const { return actions_; }

private:
    const QtAppearance& appearance_;
    const CleanupRowType& type_;
    const CleanupRowActions& actions_;
};

/// A file or folder that was found.
class CandidateRowView : public CleanupRowView {
    Q_OBJECT

public:
    using Content = CandidateRowContent;
    /// What is handed in outlives the row.
    CandidateRowView(const QtAppearance& appearance, const CleanupRowType& type, const CleanupRowActions& actions,
                     QWidget* parent);

    [[nodiscard]] static int heightFor(const Content& content, int width, const CleanupRowType& type);
    /// Whether the two need no new measuring.
    [[nodiscard]] static bool isAsHigh(const Content& one, const Content& other) {
        return one.reason == other.reason && one.note == other.note;
    }
    /// By which two renderings of the same thing are recognised.
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
    /// What is handed in outlives the row.
    AvenueRowView(const QtAppearance& appearance, const CleanupRowType& type, const CleanupRowActions& actions,
                  QWidget* parent);

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
