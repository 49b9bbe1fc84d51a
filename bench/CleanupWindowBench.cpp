// Measures the "Free Up Space" window with 400 finds on the display that there is, and prints a line for each figure.
//   xvfb-run build/bench/bench/cleanup_window_bench         QT_SCALE_FACTOR=2 doubles the pixels

#include "shell/qt/CleanupWindow.h"
#include "shell/qt/OmbrelStyle.h"
#include "tests/shell/qt/CannedCleanupContent.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

namespace vantry {

namespace {

constexpr int rowCount = 400;
constexpr int rounds = 9;

double milliseconds(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

void print(const char* what, const std::vector<double>& values) {
    std::printf("%-52s median %6.1f ms, worst %6.1f ms\n", what, median(values), *std::ranges::max_element(values));
}

/// Longest time between two turns of the event loop.
class Heartbeat {
public:
    Heartbeat() {
        QObject::connect(&timer_, &QTimer::timeout, [this] { beat(); });
        sinceLast_.start();
        timer_.start(0);
    }
    double longest() {
        beat();
        return longest_;
    }

private:
    void beat() {
        longest_ = std::max(longest_, milliseconds(sinceLast_));
        sinceLast_.start();
    }
    QTimer timer_;
    QElapsedTimer sinceLast_;
    double longest_ = 0;
};

/// Notes when the first of the rows has been painted.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget& window) : window_(window) { started_.start(); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::UpdateRequest && watched == &window_ && !painted_) {
            window_.removeEventFilter(this);
            QCoreApplication::sendEvent(&window_, event); // paints everything, down to the display
            painted_ = milliseconds(started_);
            return true;
        }
        return false;
    }
    std::optional<double> painted_;

private:
    QWidget& window_;
    QElapsedTimer started_;
};

void turn() { QCoreApplication::processEvents(QEventLoop::AllEvents, 5); }

} // namespace

int measure() {
    const QtAppearance appearance;
    QApplication::setStyle(new OmbrelStyle(appearance));
    installCleanupAccessibility();
    const CleanupWindowActions nobody{
        [] {}, [](auto) {}, [] {}, [] {}, [] {}, [] {}, {[](auto&, auto) {}, [](auto&) {}, [](auto) {}}};
    CleanupWindow window(nobody);
    const CleanupWindowContent scan = cannedScan();
    const CleanupWindowContent files = cannedFiles(rowCount);
    const CleanupWindowContent guide = cannedGuide();
    const auto& results = window.results();
    const auto settle = [&] {
        QElapsedTimer quiet;
        quiet.start();
        while (quiet.elapsed() < 100 || results.builtRowCount() < results.rowCount())
            turn();
    };
    window.renderCleanupWindow(scan);
    window.showCleanupWindow();
    settle();

    std::vector<double> first, complete, stalls, rescans, modes, ticks;
    for (int round = 0; round < rounds; ++round) {
        PaintWatch watch(window);
        window.installEventFilter(&watch);
        QElapsedTimer started;
        started.start();
        Heartbeat heart;
        window.renderCleanupWindow(files);
        while (results.builtRowCount() < rowCount || !watch.painted_)
            turn();
        complete.push_back(milliseconds(started));
        first.push_back(*watch.painted_);
        stalls.push_back(heart.longest());
        settle();

        CleanupWindowContent ticked = files;
        ticked.sections[0].candidates[0].selected = true;
        QElapsedTimer tick;
        tick.start();
        window.renderCleanupWindow(ticked);
        QCoreApplication::sendPostedEvents();
        turn();
        ticks.push_back(milliseconds(tick));

        Heartbeat mode;
        window.renderCleanupWindow(guide);
        settle();
        window.renderCleanupWindow(files);
        settle();
        modes.push_back(mode.longest());

        Heartbeat rescan;
        window.renderCleanupWindow(scan);
        settle();
        rescans.push_back(rescan.longest());
    }
    window.renderCleanupWindow(files);
    settle();
    std::vector<double> frames;
    auto* bar = results.verticalScrollBar();
    for (int value = 0; value < bar->maximum() && frames.size() < 400; value += 24) {
        QElapsedTimer frame;
        frame.start();
        bar->setValue(value);
        QCoreApplication::sendPostedEvents();
        turn();
        frames.push_back(milliseconds(frame));
    }
    std::vector<double> widths;
    for (int width = 940; width > 800; width -= 7) {
        QElapsedTimer resized;
        resized.start();
        window.resize(width, 700);
        QCoreApplication::sendPostedEvents();
        turn();
        widths.push_back(milliseconds(resized));
    }
    print("400 finds: the first screenful is painted after", first);
    print("400 finds: all rows are built after", complete);
    print("400 finds: the longest stall meanwhile", stalls);
    print("a box is ticked and painted in", ticks);
    print("to the other mode and back: the longest stall", modes);
    print("400 rows go: the longest stall", rescans);
    print("scrolling: a frame", frames);
    print("resizing: a step", widths);
    return 0;
}

} // namespace vantry

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    return vantry::measure();
}
