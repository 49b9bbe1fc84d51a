#include "shell/qt/CleanupWindow.h"

#include "shell/qt/CleanupLook.h"
#include "shell/qt/CleanupPanels.h"
#include "shell/qt/OmbrelStyle.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace vantry {

namespace {

constexpr int iconSide = 48;
constexpr int leastVisible = 40;
constexpr int statusGap = 3;

QIcon applicationIcon() {
    return QIcon::fromTheme(QStringLiteral("app.ombrel.Ombrel"),
                            QIcon(QStringLiteral(":/ombrel/app.ombrel.Ombrel.svg")));
}

/// The application's icon, at the scale of the screen that it is on.
class IconWidget : public QWidget {
public:
    explicit IconWidget(QWidget* parent) : QWidget(parent), icon_(applicationIcon()) {
        setFixedSize(iconSide, iconSide);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        icon_.paint(&painter, rect());
    }

private:
    QIcon icon_;
};

/// Darkens a window below its sheet. It lets nothing through, as the sheet does.
class Shade : public QWidget {
public:
    explicit Shade(QWidget* window) : QWidget(window) { setGeometry(window->rect()); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override { QPainter(this).fillRect(rect(), QColor(0, 0, 0, 70)); }
};

template <class Layout>
Layout* plainLayout(QWidget* host, int spacing) {
    auto* layout = new Layout(host);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

void setTextColor(QLabel& label, SystemColor color, Appearance appearance) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, roleColor(color, appearance));
    label.setPalette(palette);
}

void renderButton(QPushButton& button, const CleanupButtonContent& content) {
    button.setText(qString(content.title));
    button.setVisible(!content.hidden);
    button.setEnabled(content.enabled);
}

} // namespace

CleanupWindow::CleanupWindow(const QtAppearance& appearance, CleanupWindowActions actions)
    : QWidget(nullptr, Qt::Window),
      appearance_(appearance),
      actions_(std::move(actions)) {
    setWindowIcon(applicationIcon());
    build();
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    connect(&appearance_, &QtAppearance::changed, this, &CleanupWindow::applyColors);
    applyColors();
    const CleanupWindowContent content; // it may be shown before it is rendered
    resize(static_cast<int>(content.size.width), static_cast<int>(content.size.height));
    showContent(content);
}

CleanupWindow::~CleanupWindow() = default;

void CleanupWindow::build() {
    auto* stack = plainLayout<QVBoxLayout>(this, 0);
    auto* top = new QVBoxLayout;
    top->setContentsMargins(cleanupMargin, 20, cleanupMargin, 8);
    top->setSpacing(14);
    stack->addLayout(top);
    top->addWidget(makeHeader());
    top->addWidget(makeCards());
    top->addWidget(makeControls());
    top->addWidget(noticeBox_ = new NoticeBox(appearance_, this));
    top->addWidget(makeStatus());

    scrollEdge_ = new QWidget(this);
    scrollEdge_->setFixedHeight(1);
    stack->addWidget(scrollEdge_);
    results_ = new CleanupResultsView(appearance_, actions_.rows, this);
    stack->addWidget(results_, 1);
    connect(results_->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [this](int value) { scrollEdge_->setAutoFillBackground(value > 0); });
}

QLabel* CleanupWindow::makeLabel(const Font& font, bool wraps) {
    auto* label = new QLabel(this);
    label->setFont(qFont(font, *this));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(wraps);
    return label;
}

QPushButton* CleanupWindow::makeButton(std::function<void()> pressed) {
    auto* button = new QPushButton(this);
    button->setFont(qFont(cleanupBodyFont, *this));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [pressed = std::move(pressed)] { pressed(); });
    return button;
}

QWidget* CleanupWindow::makeHeader() {
    auto* header = new QWidget(this);
    auto* row = plainLayout<QHBoxLayout>(header, 14);
    row->addWidget(new IconWidget(header));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    row->addLayout(texts, 1);
    texts->addStretch(1);
    texts->addWidget(titleLabel_ = makeLabel(cleanupTitleFont));
    texts->addWidget(subtitleLabel_ = makeLabel(cleanupBodyFont));
    texts->addStretch(1);
    return header;
}

QWidget* CleanupWindow::makeCards() {
    auto* cards = new QWidget(this);
    auto* row = plainLayout<QHBoxLayout>(cards, 12);
    for (SummaryCard** card : {&macStorageCard_, &foundCard_, &selectedCard_})
        row->addWidget(*card = new SummaryCard(appearance_, cards), 1);
    return cards;
}

QWidget* CleanupWindow::makeControls() {
    auto* controls = new QWidget(this);
    auto* row = plainLayout<QHBoxLayout>(controls, 10);
    row->addWidget(modeControl_ = new SegmentedControl(appearance_, controls));
    row->addSpacing(2);
    row->addWidget(scanButton_ = makeButton(actions_.scan));
    row->addWidget(progressIndicator_ = new Spinner(appearance_, controls));
    row->addStretch(1);
    row->addWidget(selectSuggestedButton_ = makeButton(actions_.selectSuggested));
    row->addWidget(trashButton_ = makeButton(actions_.trash));
    trashButton_->setProperty(destructiveProperty, true);
    connect(modeControl_, &SegmentedControl::selected, this, [this](int index) {
        actions_.modeChanged(index == 0 ? CleanupWindowMode::filesFound : CleanupWindowMode::storageGuide);
        modeControl_->render(content_.modeLabels, content_.modeControl == CleanupWindowMode::filesFound ? 0 : 1);
    });
    controls->setFixedHeight(controls->sizeHint().height()); // also while buttons are hidden
    return controls;
}

// With room for a status of two lines, so that the results stay where they are when it gets longer.
QWidget* CleanupWindow::makeStatus() {
    auto* status = new QWidget(this);
    auto* lines = plainLayout<QVBoxLayout>(status, statusGap);
    lines->addWidget(statusLabel_ = makeLabel(cleanupBodyFont, true));
    lines->addWidget(selectionLabel_ = makeLabel(cleanupDetailFont, true));
    lines->addStretch(1);
    status->setMinimumHeight(2 * statusLabel_->fontMetrics().height() + statusGap +
                             selectionLabel_->fontMetrics().height());
    return status;
}

void CleanupWindow::applyColors() {
    setTextColor(*titleLabel_, SystemColor::label, appearance_.current());
    setTextColor(*subtitleLabel_, SystemColor::secondaryLabel, appearance_.current());
    setTextColor(*statusLabel_, SystemColor::label, appearance_.current());
    setTextColor(*selectionLabel_, SystemColor::secondaryLabel, appearance_.current());
    QPalette edge;
    edge.setColor(QPalette::Window, roleColor(SystemColor::separator, appearance_.current()));
    scrollEdge_->setPalette(edge);
}

void CleanupWindow::render(const CleanupWindowContent& content) {
    if (content == content_)
        return;
    QWidget* focused = focusWidget();
    const bool otherMode = content.modeControl != content_.modeControl;
    const bool sameResults = content.emptyState == content_.emptyState && content.sections == content_.sections;
    showContent(content);
    keepKeyboard(focused);
    if (!sameResults)
        results_->setContent(content.emptyState, content.sections);
    if (otherMode)
        results_->scrollToTop();
}

void CleanupWindow::showContent(const CleanupWindowContent& content) {
    content_ = content;
    setWindowTitle(qString(content.windowTitle));
    setMinimumSize(static_cast<int>(content.minimumSize.width), static_cast<int>(content.minimumSize.height));
    titleLabel_->setText(qString(content.titleLabel));
    subtitleLabel_->setText(qString(content.subtitleLabel));
    macStorageCard_->setContent(content.macStorageCard);
    foundCard_->setContent(content.foundCard);
    selectedCard_->setContent(content.selectedCard);
    modeControl_->render(content.modeLabels, content.modeControl == CleanupWindowMode::filesFound ? 0 : 1);
    renderButton(*scanButton_, content.scanButton);
    progressIndicator_->setSpinning(content.progressIndicator);
    progressIndicator_->setAccessibleName(qString(content.statusLabel));
    renderButton(*selectSuggestedButton_, content.selectSuggestedButton);
    renderButton(*trashButton_, content.trashButton);
    noticeBox_->setContent(content.noticeSymbolName, content.notice);
    statusLabel_->setText(qString(content.statusLabel));
    selectionLabel_->setText(qString(content.selectionLabel));
    results_->setSelectionEnabled(content.selectionEnabled);
}

// A control that is disabled while something is under way loses the keyboard; it gets it back unless the user has moved
// on.
void CleanupWindow::keepKeyboard(QWidget* focused) {
    QWidget* refuge = modeControl_->segment(content_.modeControl == CleanupWindowMode::filesFound ? 0 : 1);
    if (focused && (!focused->isEnabled() || !focused->isVisibleTo(this))) {
        lostTheKeyboard_ = focused;
        refuge->setFocus(Qt::OtherFocusReason);
    } else if (lostTheKeyboard_ && lostTheKeyboard_->isEnabled() && lostTheKeyboard_->isVisibleTo(this)) {
        if (focused == refuge)
            lostTheKeyboard_->setFocus(Qt::OtherFocusReason);
        lostTheKeyboard_.clear();
    }
}

void CleanupWindow::showInFront() {
    if (!isVisible())
        centre();
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
    if (sheet_) {
        sheet_->raise();
        sheet_->activateWindow();
    } else if (!focusWidget()) {
        modeControl_->segment(content_.modeControl == CleanupWindowMode::filesFound ? 0 : 1)
            ->setFocus(Qt::OtherFocusReason);
    }
}

void CleanupWindow::centre() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    if (!isMaximized() && !isFullScreen())
        resize(size().boundedTo(area.size() - QSize(leastVisible, leastVisible)).expandedTo(minimumSize()));
    move(area.center() - rect().center());
}

void CleanupWindow::scrollResultsToTop() { results_->scrollToTop(); }

void CleanupWindow::ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) {
    if (sheet_)
        sheet_->reject();
    auto* sheet = new AlertSheet(appearance_, alert, std::move(answered), this);
    sheet_ = sheet;
    if (!isVisible()) {
        sheet->reject();
        return;
    }
    auto* shade = new Shade(this);
    shade_ = shade;
    shade->show();
    connect(sheet, &QObject::destroyed, shade, &QObject::deleteLater);
    connect(sheet, &QDialog::finished, shade, &QWidget::hide);
    sheet->place();
    sheet->show();
    sheet->activateWindow();
}

void CleanupWindow::closeEvent(QCloseEvent* event) {
    if (sheet_)
        sheet_->reject();
    QWidget::closeEvent(event);
}

// Minimizing the window hides it as well, spontaneously.
void CleanupWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        actions_.closed();
}

void CleanupWindow::keyPressEvent(QKeyEvent* event) {
    auto* button = qobject_cast<QAbstractButton*>(focusWidget());
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (button)
            button->click();
        break;
    case Qt::Key_Escape: actions_.cancel(); break;
    case Qt::Key_PageUp: results_->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub); break;
    case Qt::Key_PageDown: results_->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd); break;
    default: QWidget::keyPressEvent(event);
    }
}

void CleanupWindow::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    if (sheet_)
        sheet_->place();
}

void CleanupWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (shade_)
        shade_->setGeometry(rect());
    if (sheet_)
        sheet_->place();
}

} // namespace vantry
