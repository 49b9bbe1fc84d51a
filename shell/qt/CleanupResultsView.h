#pragma once

#include "shell/qt/CleanupSectionView.h"

#include <QScrollArea>
#include <QTimer>
#include <optional>
#include <vector>

namespace vantry {

/// What a scan found, in sections below each other, or what stands there in their place. The rows that are in sight are
/// built at once, the rest in slices of the event loop; where each is to be, is known from the begin. Rows that are
/// rendered again stay the same widgets, so the keyboard stays where it is.
class CleanupResultsView : public QScrollArea {
    Q_OBJECT

public:
    CleanupResultsView(const QtAppearance& appearance, CleanupRowActions actions, QWidget* parent);
    ~CleanupResultsView() override;

    void setContent(const std::optional<EmptyStateContent>& emptyState,
                    const std::vector<CleanupSectionContent>& sections);
    /// Whether the check boxes of the rows can be used, also of those that are built later.
    void setSelectionEnabled(bool enabled);
    void scrollToTop();

    /// Null while the row is not built. Rows are counted through all sections.
    [[nodiscard]] CleanupRowView* row(int index) const;
    [[nodiscard]] int rowCount() const;
    [[nodiscard]] int builtRowCount() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    class EmptyState;
    /// A row, by its section and its place in it.
    struct Place {
        std::size_t section;
        int row;
    };

    void layOut();
    void buildVisible();
    void buildSlice();
    void build(const Place& place);
    [[nodiscard]] Place place(int index) const;
    [[nodiscard]] QRect rectOf(const Place& place) const;
    void showControl(const QWidget* control);
    void focusChanged(QWidget* control);
    [[nodiscard]] std::optional<std::pair<int, int>> focusedControl() const;
    void focusControl(int row, int column);
    void moveFocus(int step);

    const QtAppearance& appearance_;
    const CleanupRowType type_;
    const CleanupRowActions actions_;
    QWidget* content_;
    EmptyState* emptyState_;
    bool empty_ = false;
    bool selectionEnabled_ = true;
    std::vector<CleanupSectionView*> sections_;
    QTimer slices_;
    int nextRow_ = 0; ///< all before it are built
};

} // namespace vantry
