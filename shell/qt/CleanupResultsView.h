#pragma once

#include "shell/qt/CleanupSectionView.h"

#include <QScrollArea>
#include <QTimer>
#include <optional>
#include <vector>

namespace vantry {

/// The sections that a scan found, or the empty state. Visible rows are built at once, the others in slices of the
/// event loop; every row has its final place from the start. A row that is rendered again stays the same widget, so it
/// keeps the focus.
class CleanupResultsView : public QScrollArea {
    Q_OBJECT

public:
    CleanupResultsView(CleanupRowActions actions, QWidget* parent);
    ~CleanupResultsView() override;

    void setContent(const std::optional<EmptyStateContent>& emptyState,
                    const std::vector<CleanupSectionContent>& sections);
    /// Enables or disables the check boxes of all rows, including rows that are built later.
    void setSelectionEnabled(bool enabled);
    void scrollToTop();

    /// Null while the row is not built. Rows are numbered across all sections.
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
    /// A row: its section and its index there.
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

    const CleanupRowType type_;
    const CleanupRowActions actions_;
    QWidget* content_;
    EmptyState* emptyState_;
    bool empty_ = false;
    bool selectionEnabled_ = true;
    std::vector<CleanupSectionView*> sections_;
    QTimer slices_;
    int nextRow_ = 0; ///< all rows before this one are built
};

} // namespace vantry
