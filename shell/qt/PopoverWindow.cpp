#include "shell/qt/PopoverWindow.h"

#include "shell/qt/ElidingLabel.h"
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

constexpr Font titleFont{15, FontWeight::semibold};
constexpr Font bodyFont{12};
constexpr Font figureFont{12, FontWeight::medium, true};
constexpr Font detailFont{11};
constexpr Font footnoteFont{10};

constexpr int barViewHeight = 16;
constexpr int detailLines = 3;
constexpr int errorLines = 2;
constexpr int distanceFromItem = 4;

// A row that is not shown takes no room; one without margins of its own.
template <class Layout>
Layout* plainLayout(QWidget* host, int spacing) {
    auto* layout = new Layout(host);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
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
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, qColor(DynamicColor{content.color}, appearance));
    label.setPalette(palette);
}

} // namespace

PopoverWindow::PopoverWindow(const QtAppearance& appearance)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      appearance_(appearance) {
    setWindowTitle(QStringLiteral("Ombrel"));
    setAccessibleName(QStringLiteral("Ombrel"));
    build();
    connectControls();
    connect(&appearance_, &QtAppearance::changed, this, [this] { render(content_); });
    constexpr std::chrono::milliseconds longestMoment{60};
    withoutKeyboard_.setSingleShot(true);
    withoutKeyboard_.setInterval(longestMoment);
    connect(&withoutKeyboard_, &QTimer::timeout, this, &PopoverWindow::closeByItself);
}

void PopoverWindow::setController(std::weak_ptr<StoragePopoverViewController> controller) {
    controller_ = std::move(controller);
}

void PopoverWindow::build() {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(18, 16, 18, 14);
    stack->setSpacing(10);

    titleLabel_ = makeLabel(titleFont);
    summaryLabel_ = makeLabel(bodyFont);
    stack->addWidget(makeHeader());

    barView_ = new BarWidget(appearance_, this);
    barView_->setFixedHeight(barViewHeight);
    stack->addWidget(barView_);

    used_ = makeMetricRow(SolidSwatchView::Kind::used);
    available_ = makeMetricRow(SolidSwatchView::Kind::available);
    stack->addWidget(makeMetrics());

    stack->addWidget(detailLabel_ = makeLabel(detailFont, detailLines));
    stack->addWidget(errorLabel_ = makeLabel(detailFont, errorLines));
    stack->addWidget(updateLabel_ = makeLabel(footnoteFont));
    stack->addWidget(cleanupButton_ = makeButton(FontWeight::semibold));

    separator_ = new QWidget(this);
    separator_->setFixedHeight(1);
    separator_->setAutoFillBackground(true);
    stack->addWidget(separator_);

    for (QCheckBox** box : {&launchAtLoginButton_, &showPercentageButton_}) {
        *box = new QCheckBox(this);
        (*box)->setFont(qFont(bodyFont, *this));
        stack->addWidget(*box);
    }
    for (QComboBox** popUp : {&barStylePopUp_, &segmentSizingPopUp_}) {
        *popUp = new QComboBox(this);
        (*popUp)->setFont(qFont(bodyFont, *this));
        (*popUp)->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        (*popUp)->view()->window()->installEventFilter(this);
    }
    stack->addWidget(makeChoiceRow(barStyleLabel_ = makeLabel(bodyFont), barStylePopUp_));
    stack->addWidget(makeChoiceRow(segmentSizingLabel_ = makeLabel(bodyFont), segmentSizingPopUp_));
    stack->addStretch(1);
    stack->addWidget(makeCommands());
}

QLabel* PopoverWindow::makeLabel(const Font& font, int mostLines) {
    auto* label = new ElidingLabel(this, mostLines);
    label->setFont(qFont(font, *this));
    label->setMonospacedDigits(font.monospacedDigits);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QPushButton* PopoverWindow::makeButton(FontWeight weight) {
    auto* button = new QPushButton(this);
    button->setFont(qFont(Font{12, weight}, *this));
    button->setAutoDefault(false);
    return button;
}

QWidget* PopoverWindow::makeHeader() {
    auto* header = new QWidget(this);
    auto* layout = plainLayout<QVBoxLayout>(header, 2);
    layout->addWidget(titleLabel_);
    layout->addWidget(summaryLabel_);
    return header;
}

PopoverWindow::MetricRow PopoverWindow::makeMetricRow(SolidSwatchView::Kind kind) {
    auto* swatch = new SwatchWidget(appearance_, SolidSwatchView(kind), this);
    swatch->setFixedSize(static_cast<int>(SolidSwatchView::fixedSize.width),
                         static_cast<int>(SolidSwatchView::fixedSize.height));
    return {swatch, makeLabel(bodyFont), makeLabel(figureFont)};
}

QWidget* PopoverWindow::makeMetrics() {
    auto* metrics = new QWidget(this);
    auto* rows = plainLayout<QVBoxLayout>(metrics, 8);
    for (const MetricRow& row : {used_, available_}) {
        auto* line = new QHBoxLayout;
        line->setSpacing(8);
        line->addWidget(row.swatch, 0, Qt::AlignVCenter);
        line->addWidget(row.title, 1);
        line->addWidget(row.value);
        rows->addLayout(line);
    }
    return metrics;
}

QWidget* PopoverWindow::makeChoiceRow(QLabel* title, QComboBox* popUp) {
    auto* row = new QWidget(this);
    auto* layout = plainLayout<QHBoxLayout>(row, 8);
    layout->addWidget(title, 0, Qt::AlignVCenter);
    layout->addWidget(popUp, 0, Qt::AlignVCenter);
    layout->addStretch(1);
    title->setBuddy(popUp);
    return row;
}

QWidget* PopoverWindow::makeCommands() {
    auto* row = new QWidget(this);
    auto* layout = plainLayout<QHBoxLayout>(row, 8);
    layout->addWidget(refreshButton_ = makeButton());
    layout->addWidget(settingsButton_ = makeButton());
    layout->addStretch(1);
    layout->addWidget(quitButton_ = makeButton());
    return row;
}

void PopoverWindow::connectControls() {
    using Controller = StoragePopoverViewController;
    connect(refreshButton_, &QPushButton::clicked, this,
            [this] { report([](Controller& controller) { controller.refreshPressed(); }); });
    connect(settingsButton_, &QPushButton::clicked, this,
            [this] { report([](Controller& controller) { controller.settingsPressed(); }); });
    connect(cleanupButton_, &QPushButton::clicked, this,
            [this] { report([](Controller& controller) { controller.cleanupPressed(); }); });
    connect(quitButton_, &QPushButton::clicked, this,
            [this] { report([](Controller& controller) { controller.quitPressed(); }); });
    connect(launchAtLoginButton_, &QCheckBox::toggled, this,
            [this](bool on) { report([on](Controller& controller) { controller.loginItemChanged(on); }); });
    connect(showPercentageButton_, &QCheckBox::toggled, this,
            [this](bool on) { report([on](Controller& controller) { controller.percentageDisplayChanged(on); }); });
    const auto index = [](int selected) {
        return selected < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(selected));
    };
    connect(barStylePopUp_, &QComboBox::activated, this, [this, index](int selected) {
        report([&](Controller& controller) { controller.barStyleChanged(index(selected)); });
    });
    connect(segmentSizingPopUp_, &QComboBox::activated, this, [this, index](int selected) {
        report([&](Controller& controller) { controller.segmentSizingChanged(index(selected)); });
    });
}

void PopoverWindow::render(const PopoverContent& content) {
    content_ = content;
    const Appearance appearance = appearance_.current();
    renderLabel(*titleLabel_, content.titleLabel, appearance);
    renderLabel(*summaryLabel_, content.summaryLabel, appearance);
    barView_->setView(content.barView);
    used_.swatch->setView(content.usedSwatchView);
    renderLabel(*used_.title, content.usedTitleLabel, appearance);
    renderLabel(*used_.value, content.usedValueLabel, appearance);
    available_.swatch->setView(content.availableSwatchView);
    renderLabel(*available_.title, content.availableTitleLabel, appearance);
    renderLabel(*available_.value, content.availableValueLabel, appearance);
    renderLabel(*detailLabel_, content.detailLabel, appearance);
    renderLabel(*errorLabel_, content.errorLabel, appearance);
    renderLabel(*updateLabel_, content.updateLabel, appearance);
    renderButton(*cleanupButton_, content.cleanupButton);
    renderCheckBox(*launchAtLoginButton_, content.launchAtLoginButton);
    renderCheckBox(*showPercentageButton_, content.showPercentageButton);
    renderLabel(*barStyleLabel_, content.barStyleLabel, appearance);
    renderPopUp(*barStylePopUp_, content.barStylePopUp);
    renderLabel(*segmentSizingLabel_, content.segmentSizingLabel, appearance);
    renderPopUp(*segmentSizingPopUp_, content.segmentSizingPopUp);
    renderButton(*refreshButton_, content.refreshButton);
    renderButton(*settingsButton_, content.settingsButton);
    renderButton(*quitButton_, content.quitButton);
    applyColors();
}

void PopoverWindow::applyColors() {
    QPalette line = separator_->palette();
    line.setColor(QPalette::Window, qColor(DynamicColor{SystemColor::separator}, appearance_.current()));
    separator_->setPalette(line);
    update();
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

// The pointer's events all come here while the popover is shown; those inside reach its controls as ever.
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
    // An open list takes the pointer, and gives it back to nobody.
    if (event->type() == QEvent::Hide)
        QMetaObject::invokeMethod(this, &PopoverWindow::catchClicksOutside, Qt::QueuedConnection);
    return QWidget::eventFilter(watched, event);
}

void PopoverWindow::closeEvent(QCloseEvent* event) {
    closing_ = true; // losing the keyboard is part of it
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
    drawWindowEdge(painter, rect(), appearance_.current());
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace vantry
