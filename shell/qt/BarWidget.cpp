#include "shell/qt/BarWidget.h"

#include "shell/qt/QtConversions.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace vantry {

namespace {

class BarAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit BarAccessible(BarWidget* bar) : QAccessibleWidget(bar, QAccessible::ProgressBar) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text text) const override {
        switch (text) {
        case QAccessible::Name: return qString(content().label);
        case QAccessible::Value:
        case QAccessible::Description: return qString(content().value);
        default: return QAccessibleWidget::text(text);
        }
    }
    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.invisible = state.invisible || !content().isElement;
        state.readOnly = true;
        return state;
    }

    QVariant currentValue() const override {
        const auto& snapshot = view().snapshot;
        return snapshot ? qRound(snapshot->usedFraction() * 100) : 0;
    }
    void setCurrentValue(const QVariant& /*value*/) override {}
    QVariant maximumValue() const override { return 100; }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1; }

private:
    const VantryView& view() const { return static_cast<const BarWidget*>(object())->view(); }
    AccessibilityContent content() const { return view().accessibility(); }
};

QAccessibleInterface* barInterface(const QString& /*className*/, QObject* object) {
    auto* bar = qobject_cast<BarWidget*>(object);
    return bar ? new BarAccessible(bar) : nullptr;
}

} // namespace

void BarWidget::setView(const VantryView& view) {
    const bool told = this->view().accessibility() == view.accessibility();
    ViewWidget::setView(view);
    if (!told) {
        QAccessibleValueChangeEvent event(this, qString(view.accessibility().value));
        QAccessible::updateAccessibility(&event);
    }
}

void installBarAccessibility() { QAccessible::installFactory(barInterface); }

} // namespace vantry
