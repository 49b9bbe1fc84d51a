#include "shell/qt/PopoverWindow.h"

#include "app/CallIfAlive.h"
#include "app/Look.h"
#include "shell/qt/CleanupLook.h"
#include "shell/qt/ElidingLabel.h"
#include "shell/qt/GuardedApplication.h"
#include "shell/qt/OmbrelStyle.h"
#include "shell/qt/QtConversions.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <chrono>

namespace vantry {

namespace {

constexpr int distanceFromItem = 4;

template <class Layout>
Layout* addLayout(QVBoxLayout& stack, int spacing) {
    auto* layout = new Layout;
    layout->setSpacing(spacing);
    stack.addLayout(layout);
    return layout;
}

void renderPopUp(QComboBox& popUp, const PopUpContent& content) {
    const QSignalBlocker silent(popUp);
    if (popUp.count() != static_cast<int>(content.items.size())) {
        popUp.clear();
        for (const auto& item : content.items)
            popUp.addItem(qString(item));
    }
    popUp.setCurrentIndex(content.selectedIndex ? static_cast<int>(*content.selectedIndex) : -1);
    popUp.setEnabled(content.enabled);
    popUp.setToolTip(qString(content.tooltip));
}

void renderCheckBox(QCheckBox& box, const CheckBoxContent& content) {
    const QSignalBlocker silent(box);
    box.setText(qString(content.title));
    box.setToolTip(qString(content.tooltip));
    box.setChecked(content.checked);
}

void renderButton(QPushButton& button, const ButtonContent& content) {
    button.setText(qString(content.title));
    button.setToolTip(qString(content.tooltip));
}

void renderLabel(QLabel& label, const LabelContent& content, Appearance appearance) {
    label.setText(qString(content.text));
    label.setVisible(!content.hidden);
    setTextColor(label, content.color, appearance);
}

} // namespace

PopoverWindow::PopoverWindow() : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    setWindowTitle(QStringLiteral("Ombrel"));
    setAccessibleName(QStringLiteral("Ombrel"));
    build();
    constexpr std::chrono::milliseconds longestMoment{60};
    withoutKeyboard_.setSingleShot(true);
    withoutKeyboard_.setInterval(longestMoment);
    connect(&withoutKeyboard_, &QTimer::timeout, this, &PopoverWindow::closeByItself);
}

void PopoverWindow::setController(std::weak_ptr<StoragePopoverViewController> controller) {
    controller_ = std::move(controller);
}

// The order in which the controls are made is the order in which Tab goes through them.
void PopoverWindow::build() {
    using Content = PopoverContent;
    using Controller = StoragePopoverViewController;
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(popoverSideMargin, popoverTopMargin, popoverSideMargin, popoverBottomMargin);
    stack->setSpacing(popoverSpacing);

    auto* header = addLayout<QVBoxLayout>(*stack, popoverHeaderGap);
    header->addWidget(makeLabel(&Content::titleLabel, popoverTitleFont));
    header->addWidget(makeLabel(&Content::summaryLabel, popoverBodyFont));

    auto* bar = new BarWidget(this);
    bar->setFixedHeight(popoverBarHeight);
    renderers_.emplace_back([bar](const Content& content) { bar->setView(content.barView); });
    stack->addWidget(bar);

    auto* metrics = addLayout<QVBoxLayout>(*stack, popoverRowSpacing);
    metrics->addLayout(makeMetricRow(&Content::usedSwatchView, &Content::usedTitleLabel, &Content::usedValueLabel,
                                     &Content::usedTooltip));
    metrics->addLayout(makeMetricRow(&Content::availableSwatchView, &Content::availableTitleLabel,
                                     &Content::availableValueLabel, &Content::availableTooltip));

    stack->addWidget(makeLabel(&Content::detailLabel, popoverDetailFont, popoverDetailLines));
    stack->addWidget(makeLabel(&Content::errorLabel, popoverDetailFont, popoverErrorLines));
    stack->addWidget(makeLabel(&Content::updateLabel, popoverFootnoteFont));
    cleanupButton_ = makeButton(&Content::cleanupButton, &Controller::cleanupPressed, FontWeight::semibold);
    stack->addWidget(cleanupButton_);
    stack->addWidget(makeSeparator());
    stack->addWidget(makeCheckBox(&Content::launchAtLoginButton, &Controller::loginItemChanged));
    stack->addWidget(makeCheckBox(&Content::showPercentageButton, &Controller::percentageDisplayChanged));
    // Screen readers meet widgets in the order in which they are made, which arguments of a call would leave open.
    auto* const style = makeLabel(&Content::barStyleLabel, popoverBodyFont);
    stack->addLayout(makeChoiceRow(style, makePopUp(&Content::barStylePopUp, &Controller::barStyleChanged)));
    auto* const sizing = makeLabel(&Content::segmentSizingLabel, popoverBodyFont);
    stack->addLayout(makeChoiceRow(sizing, makePopUp(&Content::segmentSizingPopUp, &Controller::segmentSizingChanged)));
    stack->addStretch(1);

    auto* commands = addLayout<QHBoxLayout>(*stack, popoverRowSpacing);
    commands->addWidget(makeButton(&Content::refreshButton, &Controller::refreshPressed));
    commands->addWidget(makeButton(&Content::settingsButton, &Controller::settingsPressed));
    commands->addStretch(1);
    commands->addWidget(makeButton(&Content::quitButton, &Controller::quitPressed));
}

ElidingLabel* PopoverWindow::makeLabel(LabelContent PopoverContent::*field, const Font& font, int mostLines) {
    auto* label = new ElidingLabel(this, mostLines);
    label->setFont(qFont(font, *this));
    label->setMonospacedDigits(font.monospacedDigits);
    label->setTextFormat(Qt::PlainText);
    renderers_.emplace_back([this, label, field](const PopoverContent& content) {
        renderLabel(*label, content.*field, appearanceOf(*this));
    });
    return label;
}

QPushButton* PopoverWindow::makeButton(ButtonContent PopoverContent::*field,
                                       void (StoragePopoverViewController::*action)(), FontWeight weight) {
    auto* button = new QPushButton(this);
    button->setFont(qFont(Font{popoverBodyFont.size, weight}, *this));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, action] { callIfAlive(controller_, action); });
    renderers_.emplace_back([button, field](const PopoverContent& content) { renderButton(*button, content.*field); });
    return button;
}

QCheckBox* PopoverWindow::makeCheckBox(CheckBoxContent PopoverContent::*field,
                                       void (StoragePopoverViewController::*action)(bool)) {
    auto* box = new QCheckBox(this);
    box->setFont(qFont(popoverBodyFont, *this));
    connect(box, &QCheckBox::toggled, this, [this, action](bool on) { callIfAlive(controller_, action, on); });
    renderers_.emplace_back([box, field](const PopoverContent& content) { renderCheckBox(*box, content.*field); });
    return box;
}

QComboBox* PopoverWindow::makePopUp(PopUpContent PopoverContent::*field,
                                    void (StoragePopoverViewController::*action)(std::optional<std::size_t>)) {
    auto* popUp = new QComboBox(this);
    popUp->setFont(qFont(popoverBodyFont, *this));
    popUp->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    popUp->view()->window()->installEventFilter(this);
    connect(popUp, &QComboBox::activated, this, [this, action](int selected) {
        const auto index = selected < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(selected));
        callIfAlive(controller_, action, index);
    });
    renderers_.emplace_back([popUp, field](const PopoverContent& content) { renderPopUp(*popUp, content.*field); });
    return popUp;
}

QWidget* PopoverWindow::makeSeparator() {
    auto* separator = new QWidget(this);
    separator->setFixedHeight(1);
    separator->setAutoFillBackground(true);
    renderers_.emplace_back([this, separator](const PopoverContent& /*content*/) {
        QPalette palette = separator->palette();
        palette.setColor(QPalette::Window, qColor(DynamicColor{SystemColor::separator}, appearanceOf(*this)));
        separator->setPalette(palette);
    });
    return separator;
}

QLayout* PopoverWindow::makeMetricRow(SolidSwatchView PopoverContent::*swatch, LabelContent PopoverContent::*title,
                                      LabelContent PopoverContent::*value, std::string PopoverContent::*tooltip) {
    auto* swatchWidget = new ViewWidget<SolidSwatchView>(content_.*swatch, this);
    swatchWidget->setFixedSize(static_cast<int>(SolidSwatchView::fixedSize.width),
                               static_cast<int>(SolidSwatchView::fixedSize.height));
    ElidingLabel* titleLabel = makeLabel(title, popoverBodyFont);
    ElidingLabel* valueLabel = makeLabel(value, popoverFigureFont);
    renderers_.emplace_back([=](const PopoverContent& content) {
        swatchWidget->setView(content.*swatch);
        titleLabel->setExplanation(qString(content.*tooltip));
        valueLabel->setExplanation(qString(content.*tooltip));
    });
    auto* row = new QHBoxLayout;
    row->setSpacing(popoverRowSpacing);
    row->addWidget(swatchWidget, 0, Qt::AlignVCenter);
    row->addWidget(titleLabel, 1);
    row->addWidget(valueLabel);
    return row;
}

QLayout* PopoverWindow::makeChoiceRow(QLabel* title, QComboBox* popUp) {
    auto* row = new QHBoxLayout;
    row->setSpacing(popoverRowSpacing);
    row->addWidget(title, 0, Qt::AlignVCenter);
    row->addWidget(popUp, 0, Qt::AlignVCenter);
    row->addStretch(1);
    title->setBuddy(popUp);
    return row;
}

void PopoverWindow::render(const PopoverContent& content) {
    content_ = content;
    for (const auto& renderer : renderers_)
        renderer(content_);
    update();
}

void PopoverWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        render(content_); // in the colours of the other appearance
}

void PopoverWindow::openAt(const QRect& item) {
    const QScreen* screen = QGuiApplication::screenAt(item.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect area = screen ? screen->availableGeometry() : item;
    const QSize size(
        static_cast<int>(content_.size.width),
        std::max(static_cast<int>(content_.size.height), heightForWidth(static_cast<int>(content_.size.width))));
    setFixedSize(size);
    const int below = item.bottom() + 1 + distanceFromItem;
    const int above = item.top() - distanceFromItem - size.height();
    const int x = std::clamp(item.center().x() - size.width() / 2, area.left(),
                             std::max(area.left(), area.right() + 1 - size.width()));
    const int y = below + size.height() <= area.bottom() + 1 ? below : above;
    move(x, std::clamp(y, area.top(), std::max(area.top(), area.bottom() + 1 - size.height())));
    closing_ = false;
    show();
    raise();
    activateWindow();
    cleanupButton_->setFocus(Qt::PopupFocusReason);
    catchClicksOutside();
}

// Grabs the mouse while the popover is shown. Clicks inside reach the controls as usual.
void PopoverWindow::catchClicksOutside() {
    if (isVisible())
        windowHandle()->setMouseGrabEnabled(true);
}

void PopoverWindow::closeByItself() {
    closedByItself_.start();
    close();
}

bool PopoverWindow::closedByItselfJustNow() const {
    constexpr int longestClickMilliseconds = 250;
    return closedByItself_.isValid() && closedByItself_.elapsed() < longestClickMilliseconds;
}

bool PopoverWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && isVisible() && !closing_ && !QApplication::activePopupWidget())
        withoutKeyboard_.start();
    else if (event->type() == QEvent::WindowActivate || event->type() == QEvent::Hide)
        withoutKeyboard_.stop();
    return QWidget::event(event);
}

bool PopoverWindow::eventFilter(QObject* watched, QEvent* event) {
    // The open list of a pop-up button takes the mouse grab and does not give it back.
    if (event->type() == QEvent::Hide)
        QMetaObject::invokeMethod(this, &PopoverWindow::catchClicksOutside, Qt::QueuedConnection);
    return QWidget::eventFilter(watched, event);
}

void PopoverWindow::closeEvent(QCloseEvent* event) {
    closing_ = true; // the deactivation that follows is expected
    QWidget::closeEvent(event);
}

void PopoverWindow::hideEvent(QHideEvent* event) {
    windowHandle()->setMouseGrabEnabled(false);
    QWidget::hideEvent(event);
}

void PopoverWindow::mousePressEvent(QMouseEvent* event) {
    if (!rect().contains(event->position().toPoint()))
        closeByItself();
}

void PopoverWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    drawWindowEdge(painter, rect(), appearanceOf(*this));
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->matches(QKeySequence::Close))
        close();
    else if (!pressFocusedButton(*event, *this))
        QWidget::keyPressEvent(event);
}

} // namespace vantry
