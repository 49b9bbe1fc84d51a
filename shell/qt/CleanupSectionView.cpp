#include "shell/qt/CleanupSectionView.h"

#include "shell/qt/CleanupLook.h"
#include "shell/qt/FigureText.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"
#include "shell/qt/SymbolPicture.h"

#include <QPainter>
#include <map>
#include <string_view>
#include <utility>

namespace vantry {

namespace {

constexpr int headerHeight = 42;
constexpr int headerTextInset = 36;

} // namespace

class CleanupSectionView::Header : public QWidget, public HasAccessibleRole {
public:
    explicit Header(QWidget* parent)
        : QWidget(parent),
          titleFont_(qFont(cleanupHeadingFont, *this)),
          detailFont_(qFont(cleanupDetailFont, *this)) {}

    void setContent(const CleanupSectionContent& content) {
        symbolName_ = content.symbolName;
        title_ = qString(content.title);
        subtitle_ = qString(content.subtitle);
        trailingText_ = qString(content.trailingText);
        setAccessibleName(title_);
        setAccessibleDescription(QStringLiteral("%1 · %2").arg(subtitle_, trailingText_));
        if (const QString all = title_ + subtitle_ + trailingText_; shown_ != all) {
            shown_ = all;
            update();
        }
    }
    QAccessible::Role accessibleRole() const override { return QAccessible::Heading; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const QFontMetrics titleMetrics(titleFont_);
        const QFontMetrics detailMetrics(detailFont_);
        const auto color = [&](SystemColor role) { return roleColor(role, appearanceOf(*this)); };
        drawSymbol(painter, symbolName_, QRectF(3, 0, cleanupSymbolSide, height()), cleanupSymbolSide,
                   color(SystemColor::label));
        const int textHeight = titleMetrics.height() + 1 + detailMetrics.height();
        const int top = (height() - textHeight) / 2;
        painter.setFont(titleFont_);
        painter.setPen(color(SystemColor::label));
        painter.drawText(QRect(headerTextInset, top, width() - headerTextInset, titleMetrics.height()),
                         Qt::AlignVCenter, title_);
        painter.setFont(detailFont_);
        painter.setPen(color(SystemColor::secondaryLabel));
        const QRect line(headerTextInset, top + titleMetrics.height() + 1, width() - headerTextInset - 4,
                         detailMetrics.height());
        painter.drawText(line, Qt::AlignVCenter, subtitle_);
        drawFigures(painter, line, Qt::AlignRight, trailingText_);
    }

private:
    QFont titleFont_, detailFont_;
    std::string symbolName_;
    QString title_, subtitle_, trailingText_, shown_;
};

class CleanupSectionView::Card : public QWidget, public HasAccessibleRole {
public:
    Card(const std::vector<Slot>& rows, QWidget* parent) : QWidget(parent), slots_(rows) {}

    QAccessible::Role accessibleRole() const override { return QAccessible::List; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        drawCard(painter, rect(), appearanceOf(*this));
        const QColor hairline = roleColor(SystemColor::separator, appearanceOf(*this));
        for (std::size_t index = 1; index < slots_.size(); ++index)
            painter.fillRect(QRect(cleanupTextInset, slots_[index].top - 1, width() - cleanupTextInset - 1, 1),
                             hairline);
    }

private:
    const std::vector<Slot>& slots_;
};

CleanupSectionView::CleanupSectionView(const CleanupRowType& type, const CleanupRowActions& actions, QWidget* parent)
    : QWidget(parent),
      type_(type),
      actions_(actions),
      header_(new Header(this)),
      card_(new Card(slots_, this)) {}

// Deletes the rows later, because the call may come from a control of one of them.
void CleanupSectionView::dropRows() {
    for (const Slot& slot : slots_)
        if (slot.row) {
            slot.row->hide();
            slot.row->deleteLater();
        }
    slots_.clear();
}

// Reuses the rows whose key is in both contents.
template <class Row>
void CleanupSectionView::keepRows(const std::vector<typename Row::Content>& before,
                                  const std::vector<typename Row::Content>& after) {
    std::map<std::string_view, std::size_t> known;
    for (std::size_t index = 0; index < slots_.size(); ++index)
        known.emplace(Row::keyOf(before[index]), index);
    std::vector<Slot> next(after.size());
    for (std::size_t index = 0; index < after.size(); ++index) {
        const auto found = known.find(Row::keyOf(after[index]));
        if (found == known.end())
            continue;
        next[index] = std::exchange(slots_[found->second], {});
        if (before[found->second] != after[index]) {
            if (!Row::isAsHigh(before[found->second], after[index]))
                next[index].measuredWidth = -1;
            if (next[index].row)
                static_cast<Row*>(next[index].row)->setContent(after[index]);
        }
        known.erase(found);
    }
    dropRows();
    slots_ = std::move(next);
}

void CleanupSectionView::setContent(const CleanupSectionContent& content) {
    if (content == content_)
        return;
    const bool keepsKind = content.avenues.empty() ? content_.avenues.empty() : content_.candidates.empty();
    if (!keepsKind) {
        dropRows();
        slots_.resize(content.candidates.size() + content.avenues.size());
    } else if (content.avenues.empty()) {
        keepRows<CandidateRowView>(content_.candidates, content.candidates);
    } else {
        keepRows<AvenueRowView>(content_.avenues, content.avenues);
    }
    content_ = content;
    header_->setContent(content);
    card_->setAccessibleName(qString(content.title));
}

int CleanupSectionView::measure(int index, int width) const {
    const auto at = static_cast<std::size_t>(index);
    return content_.avenues.empty() ? CandidateRowView::heightFor(content_.candidates[at], width, type_)
                                    : AvenueRowView::heightFor(content_.avenues[at], width, type_);
}

int CleanupSectionView::layOut(int width) {
    header_->setGeometry(0, 0, width, headerHeight);
    int y = 0;
    bool moved = false;
    for (int index = 0; index < rowCount(); ++index) {
        Slot& slot = slots_[static_cast<std::size_t>(index)];
        moved = moved || slot.top != y;
        slot.top = y;
        if (std::exchange(slot.measuredWidth, width) != width)
            slot.height = measure(index, width);
        if (slot.row)
            slot.row->setGeometry(0, slot.top, width, slot.height);
        y += slot.height + 1;
    }
    card_->setGeometry(0, headerHeight + cleanupHeaderToCard, width, std::max(0, y - 1));
    if (moved)
        card_->update(); // repaints the lines between the rows
    return card_->geometry().bottom() + 1;
}

QRect CleanupSectionView::rowRect(int index) const {
    const Slot& slot = slots_[static_cast<std::size_t>(index)];
    return {0, card_->y() + slot.top, width(), slot.height};
}

template <class Row>
CleanupRowView* CleanupSectionView::build(const typename Row::Content& content) {
    auto* row = new Row(type_, actions_, card_);
    row->setContent(content);
    return row;
}

void CleanupSectionView::buildRow(int index) {
    const auto at = static_cast<std::size_t>(index);
    Slot& slot = slots_[at];
    if (slot.row)
        return;
    slot.row = content_.avenues.empty() ? build<CandidateRowView>(content_.candidates[at])
                                        : build<AvenueRowView>(content_.avenues[at]);
    slot.row->setGeometry(0, slot.top, card_->width(), slot.height);
    slot.row->show();
}

} // namespace vantry
