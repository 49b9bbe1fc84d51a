#include "shell/qt/CleanupResultsView.h"

#include "shell/qt/CleanupLook.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace vantry {

namespace {

constexpr int topMargin = 2;
constexpr int sliceMilliseconds = 8;
constexpr int focusMargin = 12;

QLabel* wrappingLabel(const Font& font, QWidget* parent) {
    auto* label = plainLabel(font, parent);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    return label;
}

} // namespace

class CleanupResultsView::EmptyState : public QWidget, public HasAccessibleRole {
public:
    explicit EmptyState(QWidget* parent)
        : QWidget(parent),
          symbol_(new SymbolWidget(emptyStateSymbolSize, SystemColor::secondaryLabel, this)),
          title_(wrappingLabel(cleanupHeadingFont, this)),
          detail_(wrappingLabel(cleanupDetailFont, this)) {
        applyColors();
    }

    void setContent(const EmptyStateContent& content) {
        symbol_->setSymbol(content.symbolName);
        title_->setText(qString(content.title));
        detail_->setText(qString(content.detail));
        setAccessibleName(title_->text());
        setAccessibleDescription(detail_->text());
    }

    /// Centres it in `area`, slightly above the middle.
    void placeIn(const QSize& area) {
        const int width = std::min(emptyStateWidth, area.width());
        const int titleHeight = title_->heightForWidth(width);
        const int detailHeight = detail_->heightForWidth(width);
        const int height = emptyStateSymbolSize + titleHeight + detailHeight + 2 * emptyStateSpacing;
        const int top = std::max(8, (area.height() - height) / 2 - emptyStateRaise);
        setGeometry((area.width() - width) / 2, top, width, height);
        symbol_->move((width - emptyStateSymbolSize) / 2, 0);
        title_->setGeometry(0, emptyStateSymbolSize + emptyStateSpacing, width, titleHeight);
        detail_->setGeometry(0, title_->geometry().bottom() + 1 + emptyStateSpacing, width, detailHeight);
    }
    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

protected:
    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            applyColors();
    }

private:
    void applyColors() { setTextColor(*detail_, SystemColor::secondaryLabel, appearanceOf(*this)); }

    SymbolWidget* symbol_;
    QLabel* title_;
    QLabel* detail_;
};

CleanupResultsView::CleanupResultsView(CleanupRowActions actions, QWidget* parent)
    : QScrollArea(parent),
      type_(*this),
      actions_(std::move(actions)),
      content_(new QWidget),
      emptyState_(new EmptyState(content_)) {
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    setWidget(content_);
    content_->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(24);
    slices_.setInterval(0);
    connect(&slices_, &QTimer::timeout, this, &CleanupResultsView::buildSlice);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget* /*before*/, QWidget* control) { focusChanged(control); });
}

CleanupResultsView::~CleanupResultsView() { disconnect(qApp, nullptr, this, nullptr); }

void CleanupResultsView::setContent(const std::optional<EmptyStateContent>& emptyState,
                                    const std::vector<CleanupSectionContent>& sections) {
    const auto focused = focusedControl();
    empty_ = emptyState.has_value();
    if (emptyState)
        emptyState_->setContent(*emptyState);
    emptyState_->setVisible(empty_);

    std::vector<CleanupSectionView*> before = std::exchange(sections_, {});
    for (const CleanupSectionContent& section : sections) {
        const auto same = std::ranges::find_if(
            before, [&](const CleanupSectionView* view) { return view && view->area() == section.area; });
        CleanupSectionView* view =
            same == before.end() ? new CleanupSectionView(type_, actions_, content_) : std::exchange(*same, nullptr);
        view->setContent(section);
        view->show();
        sections_.push_back(view);
    }
    for (CleanupSectionView* gone : before)
        if (gone) {
            gone->hide();
            gone->deleteLater(); // the call may come from a control inside it
        }
    nextRow_ = 0;
    layOut();
    if (focused && !focusedControl() && rowCount() > 0)
        focusControl(std::min(focused->first, rowCount() - 1), focused->second);
}

void CleanupResultsView::setSelectionEnabled(bool enabled) {
    if (std::exchange(selectionEnabled_, enabled) == enabled)
        return;
    for (int index = 0; index < rowCount(); ++index)
        if (CleanupRowView* built = row(index))
            built->setSelectionEnabled(enabled);
}

// While the width changes, the row at the top edge stays there.
void CleanupResultsView::layOut() {
    const int top = verticalScrollBar()->value();
    std::optional<std::pair<Place, int>> anchor;
    for (int index = 0; top > 0 && index < rowCount() && !anchor; ++index)
        if (const QRect rect = rectOf(place(index)); rect.bottom() >= top && content_->width() != viewport()->width())
            anchor = {place(index), top - rect.top()};

    const int width = viewport()->width();
    int height = topMargin;
    for (CleanupSectionView* section : sections_) {
        if (height > topMargin)
            height += cleanupSectionGap;
        const int sectionHeight = section->layOut(width - 2 * cleanupMargin);
        section->setGeometry(cleanupMargin, height, width - 2 * cleanupMargin, sectionHeight);
        height += sectionHeight;
    }
    content_->resize(width, empty_ ? viewport()->height() : height + cleanupResultsBottomMargin);
    emptyState_->placeIn(viewport()->size());
    if (anchor)
        verticalScrollBar()->setValue(rectOf(anchor->first).top() + anchor->second);
    buildVisible();
    if (nextRow_ < rowCount())
        slices_.start();
}

int CleanupResultsView::rowCount() const {
    int count = 0;
    for (const CleanupSectionView* section : sections_)
        count += section->rowCount();
    return count;
}

int CleanupResultsView::builtRowCount() const {
    int count = 0;
    for (int index = 0; index < rowCount(); ++index)
        count += row(index) ? 1 : 0;
    return count;
}

CleanupResultsView::Place CleanupResultsView::place(int index) const {
    std::size_t section = 0;
    for (; index >= sections_[section]->rowCount(); ++section)
        index -= sections_[section]->rowCount();
    return {section, index};
}

CleanupRowView* CleanupResultsView::row(int index) const {
    const Place at = place(index);
    return sections_[at.section]->row(at.row);
}

QRect CleanupResultsView::rectOf(const Place& at) const {
    return sections_[at.section]->rowRect(at.row).translated(sections_[at.section]->pos());
}

// Tab reaches the row after the rows above it, in whatever order the rows are built.
void CleanupResultsView::build(const Place& at) {
    CleanupSectionView& section = *sections_[at.section];
    if (section.row(at.row))
        return;
    section.buildRow(at.row);
    section.row(at.row)->setSelectionEnabled(selectionEnabled_);
    const auto controls = section.row(at.row)->controls();
    if (controls.empty())
        return;
    Place other = at;
    while (other.row > 0 || other.section > 0) {
        other = other.row > 0 ? Place{other.section, other.row - 1}
                              : Place{other.section - 1, sections_[other.section - 1]->rowCount()};
        const CleanupRowView* before =
            other.row < sections_[other.section]->rowCount() ? sections_[other.section]->row(other.row) : nullptr;
        if (before && !before->controls().empty()) {
            QWidget* last = before->controls().back();
            for (QWidget* control : controls) {
                setTabOrder(last, control);
                last = control;
            }
            return;
        }
    }
    // No row above it is built yet: it comes before the next built row.
    for (int index = 0; index < rowCount(); ++index)
        if (CleanupRowView* next = row(index); next && next != section.row(at.row) && !next->controls().empty()) {
            QWidget* previous = next->controls().front()->previousInFocusChain();
            for (QWidget* control : controls) {
                setTabOrder(previous, control);
                previous = control;
            }
            return;
        }
}

void CleanupResultsView::buildVisible() {
    if (sections_.empty())
        return;
    const QRect seen(0, verticalScrollBar()->value(), viewport()->width(), viewport()->height());
    for (std::size_t section = 0; section < sections_.size(); ++section)
        for (int row = 0; sections_[section]->geometry().intersects(seen) && row < sections_[section]->rowCount();
             ++row)
            if (rectOf({section, row}).intersects(seen))
                build({section, row});
}

void CleanupResultsView::buildSlice() {
    QElapsedTimer elapsed;
    elapsed.start();
    const int count = rowCount();
    while (nextRow_ < count && elapsed.elapsed() < sliceMilliseconds)
        build(place(nextRow_++));
    if (nextRow_ >= count)
        slices_.stop();
}

void CleanupResultsView::scrollToTop() { verticalScrollBar()->setValue(0); }

void CleanupResultsView::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    layOut();
}

void CleanupResultsView::scrollContentsBy(int dx, int dy) {
    QScrollArea::scrollContentsBy(dx, dy);
    buildVisible();
}

std::optional<std::pair<int, int>> CleanupResultsView::focusedControl() const {
    QWidget* focused = window()->focusWidget();
    if (!focused || !content_->isAncestorOf(focused))
        return std::nullopt;
    for (int index = 0; index < rowCount(); ++index)
        if (const CleanupRowView* candidate = row(index); candidate && candidate->isAncestorOf(focused)) {
            const auto controls = candidate->controls();
            const auto at = std::ranges::find(controls, focused);
            if (at != controls.end())
                return std::pair(index, static_cast<int>(at - controls.begin()));
        }
    return std::nullopt;
}

void CleanupResultsView::focusControl(int index, int column) {
    build(place(index));
    const auto controls = row(index)->controls();
    if (!controls.empty())
        controls[static_cast<std::size_t>(std::min(column, static_cast<int>(controls.size()) - 1))]->setFocus(
            Qt::TabFocusReason);
}

// Moves to the next row with an enabled control in the same column. Columns are counted from the right, because every
// row of a kind has the button there.
void CleanupResultsView::moveFocus(int step) {
    const auto focused = focusedControl();
    if (!focused)
        return;
    const int fromRight = static_cast<int>(row(focused->first)->controls().size()) - 1 - focused->second;
    for (int index = focused->first + step; index >= 0 && index < rowCount(); index += step) {
        build(place(index));
        const auto controls = row(index)->controls();
        const int column = std::max(0, static_cast<int>(controls.size()) - 1 - fromRight);
        if (!controls.empty() && controls[static_cast<std::size_t>(column)]->isEnabled()) {
            focusControl(index, column);
            return;
        }
    }
}

void CleanupResultsView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up: moveFocus(-1); break;
    case Qt::Key_Down: moveFocus(1); break;
    case Qt::Key_Home: verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum); break;
    case Qt::Key_End: verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum); break;
    default: QScrollArea::keyPressEvent(event);
    }
}

// Skips QScrollArea, which would scroll further than needed; `focusChanged` scrolls to the focused control.
bool CleanupResultsView::focusNextPrevChild(bool next) {
    return QWidget::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
}

void CleanupResultsView::focusChanged(QWidget* control) {
    if (control && content_->isAncestorOf(control))
        showControl(control);
}

// Shows the whole row, so that the text beside the control can be read; for the first row of a section, the header too.
void CleanupResultsView::showControl(const QWidget* control) {
    for (int index = 0; index < rowCount(); ++index) {
        const CleanupRowView* shown = row(index);
        if (!shown || !shown->isAncestorOf(control))
            continue;
        const Place at = place(index);
        const QRect rect = rectOf(at);
        const int top = at.row == 0 ? sections_[at.section]->y() : rect.top();
        const int bottom = rect.bottom() + focusMargin;
        QScrollBar& bar = *verticalScrollBar();
        if (top - focusMargin < bar.value())
            bar.setValue(bottom <= viewport()->height() ? 0 : top - focusMargin);
        else if (bottom > bar.value() + viewport()->height())
            bar.setValue(bottom - viewport()->height());
        return;
    }
}

} // namespace vantry
