#include "shell/qt/CleanupWindow.h"

#include "shell/qt/CleanupLook.h"
#include "shell/qt/CleanupPanels.h"
#include "shell/qt/GuardedApplication.h"
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

constexpr int leastVisible = 40;

QIcon applicationIcon() {
    return QIcon::fromTheme(QStringLiteral("app.ombrel.Ombrel"),
                            QIcon(QStringLiteral(":/ombrel/app.ombrel.Ombrel.svg")));
}

/// The application's icon, sharp at the scale of its screen.
class IconWidget : public QWidget {
public:
    explicit IconWidget(QWidget* parent) : QWidget(parent), icon_(applicationIcon()) {
        setFixedSize(cleanupIconSide, cleanupIconSide);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        icon_.paint(&painter, rect());
    }

private:
    QIcon icon_;
};

/// Darkens a window below its sheet and blocks clicks on it.
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

int segmentOf(CleanupWindowMode mode) { return mode == CleanupWindowMode::filesFound ? 0 : 1; }

} // namespace

CleanupWindow::CleanupWindow(CleanupWindowActions actions)
    : QWidget(nullptr, Qt::Window),
      actions_(std::move(actions)) {
    setWindowIcon(applicationIcon());
    build();
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    const CleanupWindowContent content; // it may be shown before it is rendered
    resize(static_cast<int>(content.size.width), static_cast<int>(content.size.height));
    showContent(content);
}

void CleanupWindow::build() {
    auto* stack = plainLayout<QVBoxLayout>(this, 0);
    auto* top = new QVBoxLayout;
    top->setContentsMargins(cleanupMargin, cleanupTopMargin, cleanupMargin, 8);
    top->setSpacing(cleanupSpacing);
    stack->addLayout(top);
    top->addWidget(makeHeader());
    top->addWidget(makeCards());
    top->addWidget(makeControls());
    auto* notice = new NoticeBox(this);
    addRenderer(
        [=](const CleanupWindowContent& content) { notice->setContent(content.noticeSymbolName, content.notice); });
    top->addWidget(notice);
    top->addWidget(makeStatus());

    scrollEdge_ = new QWidget(this);
    scrollEdge_->setFixedHeight(1);
    addRenderer([this](const CleanupWindowContent& /*content*/) {
        QPalette palette;
        palette.setColor(QPalette::Window, roleColor(SystemColor::separator, appearanceOf(*this)));
        scrollEdge_->setPalette(palette);
    });
    stack->addWidget(scrollEdge_);
    results_ = new CleanupResultsView(actions_.rows, this);
    stack->addWidget(results_, 1);
    addRenderer(
        [this](const CleanupWindowContent& content) { results_->setSelectionEnabled(content.selectionEnabled); });
    connect(results_->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [this](int value) { scrollEdge_->setAutoFillBackground(value > 0); });
}

QLabel* CleanupWindow::makeLabel(std::string CleanupWindowContent::*field, const Font& font, SystemColor color) {
    auto* label = plainLabel(font, this);
    addRenderer([=, this](const CleanupWindowContent& content) {
        label->setText(qString(content.*field));
        setTextColor(*label, color, appearanceOf(*this));
    });
    return label;
}

QPushButton* CleanupWindow::makeButton(CleanupButtonContent CleanupWindowContent::*field,
                                       std::function<void()> pressed) {
    auto* button = new QPushButton(this);
    button->setFont(qFont(cleanupBodyFont, *this));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [pressed = std::move(pressed)] { pressed(); });
    addRenderer([=](const CleanupWindowContent& content) {
        button->setText(qString((content.*field).title));
        button->setVisible(!(content.*field).hidden);
        button->setEnabled((content.*field).enabled);
    });
    return button;
}

QWidget* CleanupWindow::makeHeader() {
    auto* header = new QWidget(this);
    auto* row = plainLayout<QHBoxLayout>(header, cleanupSpacing);
    row->addWidget(new IconWidget(header));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(cleanupHeaderGap);
    row->addLayout(texts, 1);
    texts->addStretch(1);
    texts->addWidget(makeLabel(&CleanupWindowContent::titleLabel, cleanupTitleFont, SystemColor::label));
    texts->addWidget(makeLabel(&CleanupWindowContent::subtitleLabel, cleanupBodyFont, SystemColor::secondaryLabel));
    texts->addStretch(1);
    return header;
}

QWidget* CleanupWindow::makeCards() {
    auto* cards = new QWidget(this);
    auto* row = plainLayout<QHBoxLayout>(cards, cleanupCardGap);
    for (const auto field : {&CleanupWindowContent::macStorageCard, &CleanupWindowContent::foundCard,
                             &CleanupWindowContent::selectedCard}) {
        auto* card = new SummaryCard(cards);
        addRenderer([=](const CleanupWindowContent& content) { card->setContent(content.*field); });
        row->addWidget(card, 1);
    }
    return cards;
}

QWidget* CleanupWindow::makeControls() {
    auto* controls = new QWidget(this);
    auto* row = plainLayout<QHBoxLayout>(controls, cleanupControlGap);
    row->addWidget(modeControl_ = new SegmentedControl(controls));
    addRenderer([this](const CleanupWindowContent& content) {
        modeControl_->render(content.modeLabels, segmentOf(content.modeControl));
    });
    connect(modeControl_, &SegmentedControl::selected, this, [this](int index) {
        actions_.modeChanged(index == 0 ? CleanupWindowMode::filesFound : CleanupWindowMode::storageGuide);
        modeControl_->render(content_.modeLabels, segmentOf(content_.modeControl));
    });
    row->addSpacing(2);
    row->addWidget(makeButton(&CleanupWindowContent::scanButton, actions_.scan));
    auto* spinner = new Spinner(controls);
    addRenderer([=](const CleanupWindowContent& content) {
        spinner->setVisible(content.progressIndicator);
        spinner->setAccessibleName(qString(content.statusLabel));
    });
    row->addWidget(spinner);
    row->addStretch(1);
    row->addWidget(makeButton(&CleanupWindowContent::selectSuggestedButton, actions_.selectSuggested));
    auto* trash = makeButton(&CleanupWindowContent::trashButton, actions_.trash);
    trash->setProperty(destructiveProperty, true);
    row->addWidget(trash);
    controls->setFixedHeight(controls->sizeHint().height()); // also while buttons are hidden
    return controls;
}

// There is always room for a status of two lines, so that the results do not move when it gets longer.
QWidget* CleanupWindow::makeStatus() {
    auto* status = new QWidget(this);
    auto* lines = plainLayout<QVBoxLayout>(status, cleanupStatusGap);
    auto* text = makeLabel(&CleanupWindowContent::statusLabel, cleanupBodyFont, SystemColor::label);
    auto* selection = makeLabel(&CleanupWindowContent::selectionLabel, cleanupDetailFont, SystemColor::secondaryLabel);
    for (QLabel* label : {text, selection}) {
        label->setWordWrap(true);
        lines->addWidget(label);
    }
    lines->addStretch(1);
    status->setMinimumHeight(2 * text->fontMetrics().height() + cleanupStatusGap + selection->fontMetrics().height());
    return status;
}

void CleanupWindow::renderCleanupWindow(const CleanupWindowContent& content) {
    if (content == content_)
        return;
    QWidget* focused = focusWidget();
    const bool sameResults = content.emptyState == content_.emptyState && content.sections == content_.sections;
    showContent(content);
    keepKeyboard(focused);
    if (!sameResults)
        results_->setContent(content.emptyState, content.sections);
}

void CleanupWindow::showContent(const CleanupWindowContent& content) {
    content_ = content;
    setWindowTitle(qString(content.windowTitle));
    setMinimumSize(static_cast<int>(content.minimumSize.width), static_cast<int>(content.minimumSize.height));
    for (const auto& renderer : renderers_)
        renderer(content_);
}

// A control that is disabled during a scan or a move loses the focus. It gets it back unless the user has moved the
// focus meanwhile.
void CleanupWindow::keepKeyboard(QWidget* focused) {
    QWidget* refuge = modeControl_->segment(segmentOf(content_.modeControl));
    if (focused && (!focused->isEnabled() || !focused->isVisibleTo(this))) {
        lostTheKeyboard_ = focused;
        refuge->setFocus(Qt::OtherFocusReason);
    } else if (lostTheKeyboard_ && lostTheKeyboard_->isEnabled() && lostTheKeyboard_->isVisibleTo(this)) {
        if (focused == refuge)
            lostTheKeyboard_->setFocus(Qt::OtherFocusReason);
        lostTheKeyboard_.clear();
    }
}

void CleanupWindow::showCleanupWindow() {
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
        modeControl_->segment(segmentOf(content_.modeControl))->setFocus(Qt::OtherFocusReason);
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

void CleanupWindow::ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) {
    if (sheet_)
        sheet_->reject();
    auto* sheet = new AlertSheet(alert, std::move(answered), this);
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

void CleanupWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showContent(content_); // in the colours of the other appearance
}

void CleanupWindow::closeEvent(QCloseEvent* event) {
    if (sheet_)
        sheet_->reject();
    QWidget::closeEvent(event);
}

// Minimizing also hides the window; that hide event is spontaneous.
void CleanupWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        actions_.closed();
}

void CleanupWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape: actions_.cancel(); break;
    case Qt::Key_PageUp: results_->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub); break;
    case Qt::Key_PageDown: results_->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd); break;
    default:
        if (!pressFocusedButton(*event, *this))
            QWidget::keyPressEvent(event);
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
