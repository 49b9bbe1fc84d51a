#include "shell/qt/CleanupControls.h"

#include "shell/qt/CleanupLook.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"
#include "shell/qt/SymbolPicture.h"

#include <QAccessibleWidget>
#include <QHBoxLayout>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyleOptionButton>

namespace vantry {

namespace {

constexpr int segmentPadding = 16;
constexpr int segmentHeight = 28;
constexpr int spinnerSide = 18;
constexpr int spokes = 8;

class RoleAccessible : public QAccessibleWidget {
public:
    RoleAccessible(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}

    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.busy = role() == QAccessible::ProgressBar && widget()->isVisible();
        return state;
    }
};

QAccessibleInterface* interfaceWithRole(const QString& /*className*/, QObject* object) {
    const auto* described = dynamic_cast<HasAccessibleRole*>(object);
    return described ? new RoleAccessible(static_cast<QWidget*>(object), described->accessibleRole()) : nullptr;
}

/// Paints its text, on a pill when it is selected.
class Segment : public QRadioButton {
public:
    explicit Segment(QWidget* parent) : QRadioButton(parent) { setFont(qFont(cleanupStrongFont, *this)); }

    QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 2 * segmentPadding, segmentHeight};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool dark = appearanceOf(*this) == Appearance::dark;
        const QRectF pill = QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5);
        if (isChecked()) {
            painter.setPen(QPen(dark ? QColor(255, 255, 255, 22) : QColor(0, 0, 0, 26), 1));
            painter.setBrush(dark ? QColor(108, 108, 111) : QColor(Qt::white));
            painter.drawRoundedRect(pill, 5, 5);
        }
        painter.setPen(roleColor(SystemColor::label, appearanceOf(*this)));
        painter.setOpacity(isDown() ? 0.6 : 1);
        painter.drawText(rect(), Qt::AlignCenter, text());
        painter.setOpacity(1);
        drawFocusRing(painter, *this, rect());
    }
};

} // namespace

void installCleanupAccessibility() { QAccessible::installFactory(interfaceWithRole); }

SegmentedControl::SegmentedControl(QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (std::size_t index = 0; index < segments_.size(); ++index) {
        segments_.at(index) = new Segment(this);
        layout->addWidget(segments_.at(index), 1);
        connect(segments_.at(index), &QRadioButton::toggled, this, [this, index](bool on) {
            if (on)
                emit selected(static_cast<int>(index));
        });
    }
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SegmentedControl::render(const std::array<std::string, 2>& labels, int selected) {
    const QSignalBlocker first(segments_[0]);
    const QSignalBlocker second(segments_[1]);
    for (std::size_t index = 0; index < segments_.size(); ++index)
        segments_.at(index)->setText(qString(labels.at(index)));
    QRadioButton* now = segments_.at(static_cast<std::size_t>(selected));
    const bool hasKeyboard = segments_[0]->hasFocus() || segments_[1]->hasFocus();
    now->setChecked(true);
    if (hasKeyboard)
        now->setFocus(Qt::OtherFocusReason);
    update();
}

void SegmentedControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool dark = appearanceOf(*this) == Appearance::dark;
    painter.setPen(QPen(dark ? QColor(255, 255, 255, 18) : QColor(0, 0, 0, 14), 1));
    painter.setBrush(dark ? QColor(255, 255, 255, 20) : QColor(0, 0, 0, 18));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 7, 7);
}

Spinner::Spinner(QWidget* parent) : QWidget(parent) {
    setFixedSize(spinnerSide, spinnerSide);
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
    hide();
    timer_.setInterval(90);
    connect(&timer_, &QTimer::timeout, this, [this] {
        step_ = (step_ + 1) % spokes;
        update();
    });
}

void Spinner::showEvent(QShowEvent* event) {
    timer_.start();
    QWidget::showEvent(event);
}

void Spinner::hideEvent(QHideEvent* event) {
    timer_.stop();
    QWidget::hideEvent(event);
}

void Spinner::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(spinnerSide / 2.0, spinnerSide / 2.0);
    QColor color = roleColor(SystemColor::label, appearanceOf(*this));
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const int age = (step_ - spoke + spokes) % spokes;
        color.setAlphaF(0.75F - 0.6F * static_cast<float>(age) / spokes);
        painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(spoke * 360.0 / spokes);
        painter.drawLine(QPointF(0, -4.2), QPointF(0, -7.2));
        painter.restore();
    }
}

SymbolButton::SymbolButton(std::string symbolName, QWidget* parent)
    : RowControl(parent),
      symbolName_(std::move(symbolName)) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void SymbolButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Appearance appearance = appearanceOf(*this);
    if (isDown() || underMouse()) {
        const int alpha = isDown() ? 36 : 20;
        painter.setPen(Qt::NoPen);
        painter.setBrush(appearance == Appearance::dark ? QColor(255, 255, 255, alpha) : QColor(0, 0, 0, alpha));
        painter.drawRoundedRect(rect(), 6, 6);
    }
    drawSymbol(painter, symbolName_, rect(), 16,
               roleColor(underMouse() ? SystemColor::label : SystemColor::secondaryLabel, appearance));
    drawFocusRing(painter, *this, rect());
}

void RowCheckBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const int side = style()->pixelMetric(QStyle::PM_IndicatorWidth, &option, this);
    option.rect = QRect((width() - side) / 2, (height() - side) / 2, side, side);
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, this);
    drawFocusRing(painter, *this, option.rect.adjusted(-4, -4, 4, 4));
}

SymbolWidget::SymbolWidget(int side, SystemColor color, QWidget* parent) : QWidget(parent), side_(side), color_(color) {
    setFixedSize(side, side);
}

void SymbolWidget::setSymbol(const std::string& name) {
    name_ = name;
    update();
}

void SymbolWidget::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawSymbol(painter, name_, rect(), side_, roleColor(color_, appearanceOf(*this)));
}

} // namespace vantry
