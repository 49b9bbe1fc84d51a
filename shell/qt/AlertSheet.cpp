#include "shell/qt/AlertSheet.h"

#include "cleanup/window/AlertText.h"
#include "shell/qt/CleanupControls.h"
#include "shell/qt/CleanupLook.h"
#include "shell/qt/OmbrelStyle.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace vantry {

namespace {

constexpr Font messageFont{14, FontWeight::bold};
constexpr int sheetWidth = 440;
constexpr int symbolSide = 44;
constexpr int sidePadding = 24;
constexpr int symbolGap = 18;
constexpr int messageWidth = sheetWidth - 2 * sidePadding - symbolSide - symbolGap;
constexpr int distanceFromTop = 96; // of the window's content
constexpr int leastButtonWidth = 96;

QLabel* textLabel(const QString& text, const Font& font, QWidget* parent) {
    auto* label = plainLabel(font, parent);
    label->setText(text);
    label->setWordWrap(true);
    return label;
}

// If names are elided, the tooltip and the accessible description have the whole text.
QLabel* informationLabel(const AlertContent& alert, QWidget* parent) {
    auto* label = textLabel(QString(), cleanupBodyFont, parent);
    const QString whole = qString(alert.informativeText);
    const QString shown = qString(fittedInformativeText(alert, messageWidth, [&](const std::string& text) {
        return label->fontMetrics().horizontalAdvance(qString(text));
    }));
    label->setText(shown);
    if (shown != whole) {
        label->setAccessibleDescription(whole);
        label->setToolTip(wrappedToolTip(whole));
    }
    label->setTextInteractionFlags(
        Qt::TextSelectableByMouse); // not by keyboard, so that the focus stays on the buttons
    return label;
}

} // namespace

AlertSheet::AlertSheet(const AlertContent& alert, std::function<void(AlertAnswer)> answered, QWidget* window)
    : QDialog(window, Qt::Dialog | Qt::FramelessWindowHint),
      answered_(std::move(answered)) {
    setWindowModality(Qt::WindowModal);
    setWindowTitle(qString(alert.message));
    setAccessibleName(qString(alert.message));
    setAccessibleDescription(qString(alert.informativeText));

    auto* sheet = new QHBoxLayout(this);
    sheet->setContentsMargins(sidePadding, 22, sidePadding, 20);
    sheet->setSpacing(symbolGap);
    auto* symbol = new SymbolWidget(symbolSide, SystemColor::orange, this);
    symbol->setSymbol("exclamationmark.triangle.fill");
    sheet->addWidget(symbol, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    sheet->addLayout(texts, 1);
    texts->addWidget(textLabel(qString(alert.message), messageFont, this));
    texts->addWidget(informationLabel(alert, this));
    texts->addSpacing(12);

    auto* row = new QHBoxLayout;
    row->setSpacing(10);
    row->addStretch(1);
    texts->addLayout(row);
    QPushButton* first = nullptr;
    for (std::size_t index = 0; index < alert.buttons.size(); ++index) {
        auto* button = new QPushButton(qString(alert.buttons[index]), this);
        button->setFont(qFont(cleanupBodyFont, *button));
        button->setMinimumWidth(leastButtonWidth);
        button->setAutoDefault(false);
        const auto meant = index == 0 ? AlertAnswer::first : AlertAnswer::last;
        connect(button, &QPushButton::clicked, this, [this, meant] {
            answer(meant);
            done(meant == AlertAnswer::first ? Accepted : Rejected);
        });
        row->insertWidget(1, button); // the first button is the rightmost
        if (index == 0)
            first = button;
        else
            setTabOrder(first, button);
    }
    if (first) {
        first->setDefault(true);
        first->setFocus(Qt::OtherFocusReason);
    }
    setFixedWidth(sheetWidth);
}

AlertSheet::~AlertSheet() { answer(AlertAnswer::last); }

void AlertSheet::answer(AlertAnswer answer) {
    if (auto answered = std::exchange(answered_, nullptr))
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [answered = std::move(answered), answer] { answered(answer); },
            Qt::QueuedConnection);
}

// Escape and closing the sheet also end here.
void AlertSheet::done(int result) {
    answer(AlertAnswer::last);
    QDialog::done(result);
    deleteLater();
}

void AlertSheet::place() {
    const QWidget* window = parentWidget();
    setFixedHeight(layout()->heightForWidth(sheetWidth));
    const int x = (window->width() - width()) / 2;
    const int y = std::max(0, std::min(distanceFromTop, (window->height() - height()) / 2));
    move(window->mapToGlobal(QPoint(x, y)));
}

void AlertSheet::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    drawWindowEdge(painter, rect(), appearanceOf(*this));
}

} // namespace vantry
