#pragma once

#include "shell/qt/CleanupRowView.h"

#include <vector>

namespace vantry {

/// A header and a card with rows of one kind. Row heights are measured before the rows are built, so that nothing moves
/// while they are built piece by piece.
class CleanupSectionView : public QWidget {
    Q_OBJECT

public:
    /// `type` and `actions` outlive the view.
    CleanupSectionView(const CleanupRowType& type, const CleanupRowActions& actions, QWidget* parent);

    /// Rows that are in both contents stay the same widgets.
    void setContent(const CleanupSectionContent& content);
    [[nodiscard]] CleanupArea area() const { return content_.area; }
    /// Lays the rows out for `width`; the result is the height.
    int layOut(int width);

    [[nodiscard]] int rowCount() const { return static_cast<int>(slots_.size()); }
    /// Null while the row is not built.
    [[nodiscard]] CleanupRowView* row(int index) const { return slots_[static_cast<std::size_t>(index)].row; }
    /// The row's rectangle in the view, whether or not it is built.
    [[nodiscard]] QRect rowRect(int index) const;
    void buildRow(int index);

private:
    class Header;
    class Card;
    struct Slot {
        CleanupRowView* row = nullptr;
        int top = 0; ///< in the card
        int height = 0;
        int measuredWidth = -1; ///< the width that `height` is for
    };

    void dropRows();
    template <class Row>
    void keepRows(const std::vector<typename Row::Content>& before, const std::vector<typename Row::Content>& after);
    template <class Row>
    CleanupRowView* build(const typename Row::Content& content);
    [[nodiscard]] int measure(int index, int width) const;

    const CleanupRowType& type_;
    const CleanupRowActions& actions_;
    CleanupSectionContent content_;
    std::vector<Slot> slots_;
    Header* header_;
    Card* card_;
};

} // namespace vantry
