#pragma once

#include "shell/qt/CleanupRowView.h"

#include <vector>

namespace vantry {

/// A header and a card with rows, all of one kind. How high each row is, is known before it is built, so that nothing
/// moves while the rows are built piece by piece.
class CleanupSectionView : public QWidget {
    Q_OBJECT

public:
    /// What is handed in outlives the view.
    CleanupSectionView(const QtAppearance& appearance, const CleanupRowType& type, const CleanupRowActions& actions,
                       QWidget* parent);

    /// Keeps the rows that stay.
    void setContent(const CleanupSectionContent& content);
    [[nodiscard]] CleanupArea area() const { return content_.area; }
    /// How high the view is at `width`, which it lays its rows out for.
    int layOut(int width);

    [[nodiscard]] int rowCount() const { return static_cast<int>(slots_.size()); }
    /// Null while the row is not built.
    [[nodiscard]] CleanupRowView* row(int index) const { return slots_[static_cast<std::size_t>(index)].row; }
    /// Where the row is, or will be, in the view.
    [[nodiscard]] QRect rowRect(int index) const;
    void buildRow(int index);

private:
    class Header;
    class Card;
    struct Slot {
        CleanupRowView* row = nullptr;
        int top = 0; ///< in the card
        int height = 0;
        int measuredWidth = -1; ///< at which it has this height
    };

    void dropRows();
    template <class Row>
    void keepRows(const std::vector<typename Row::Content>& before, const std::vector<typename Row::Content>& after);
    template <class Row>
    CleanupRowView* build(const typename Row::Content& content);
    [[nodiscard]] int measure(int index, int width) const;

    const QtAppearance& appearance_;
    const CleanupRowType& type_;
    const CleanupRowActions& actions_;
    CleanupSectionContent content_;
    std::vector<Slot> slots_;
    Header* header_;
    Card* card_;
};

} // namespace vantry
