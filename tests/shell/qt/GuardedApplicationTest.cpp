#include "tests/shell/qt/EventLoop.h"

#include <gmock/gmock.h>

#include <QKeyEvent>
#include <QPushButton>
#include <QWindow>

namespace vantry {

namespace {

class Button : public QPushButton {
public:
    using QPushButton::QPushButton;

    int presses = 0; ///< of keys

protected:
    void keyPressEvent(QKeyEvent* event) override {
        ++presses;
        QPushButton::keyPressEvent(event);
    }
};

/// A window with a focused button. Events go to the window, as from the system.
class GuardedApplicationTest : public testing::Test {
protected:
    void SetUp() override {
        window.setWindowFlag(Qt::Window);
        QObject::connect(&button, &QPushButton::clicked, &button, [this] { ++clicks; });
        button.setAutoDefault(true); // Return presses it as well
        window.show();
        settle();
        button.setFocus();
        static quint64 clock = 0; // the application remembers events of earlier tests
        origin = clock += 100000;
    }

    void press(int key, quint64 time, bool isAutoRepeat = false) { send(QEvent::KeyPress, key, time, isAutoRepeat); }
    void release(int key, quint64 time, bool isAutoRepeat = false) {
        send(QEvent::KeyRelease, key, time, isAutoRepeat);
    }
    void send(QEvent::Type type, int key, quint64 time, bool isAutoRepeat) {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), isAutoRepeat);
        event.setTimestamp(time == 0 ? 0 : origin + time);
        QCoreApplication::sendEvent(window.windowHandle(), &event);
    }

    QWidget window;
    Button button{&window};
    int clicks = 0;
    quint64 origin = 0;
};

} // namespace

TEST_F(GuardedApplicationTest, EachNewPressIsPassedOn) {
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        clicks = 0;
        for (const quint64 time : {1000U, 1200U, 1400U}) {
            press(key, time);
            release(key, time + 50);
        }
        EXPECT_EQ(clicks, 3) << key;
    }
}

TEST_F(GuardedApplicationTest, AMarkedRepetitionIsDropped) {
    press(Qt::Key_Return, 1000);
    for (const quint64 time : {1500U, 1530U, 1560U}) {
        release(Qt::Key_Return, time, true);
        press(Qt::Key_Return, time, true);
    }
    EXPECT_EQ(clicks, 1);
}

TEST_F(GuardedApplicationTest, APressRightAfterItsReleaseIsAnUnmarkedRepetition) {
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        clicks = 0;
        press(key, 1000);
        for (const quint64 pause : {0U, 1U, 30U}) {
            release(key, 2000);
            press(key, 2000 + pause);
        }
        release(key, 3000);
        EXPECT_EQ(clicks, 1) << key;
        press(key, 3031);
        release(key, 3100);
        EXPECT_EQ(clicks, 2) << key;
    }
}

TEST_F(GuardedApplicationTest, ARepetitionOfAKeyPressedInAnotherWindowIsDropped) {
    release(Qt::Key_Return, 1000);
    press(Qt::Key_Return, 1000);
    EXPECT_EQ(clicks, 0);
}

TEST_F(GuardedApplicationTest, KeysAreTrackedSeparately) {
    press(Qt::Key_Space, 1000);
    release(Qt::Key_Space, 1010);
    press(Qt::Key_Return, 1015);
    EXPECT_EQ(clicks, 2);
}

TEST_F(GuardedApplicationTest, EventsWithoutATimestampAreNoRepetitions) {
    for (int time = 0; time < 2; ++time) {
        press(Qt::Key_Escape, 0); // a key for which no other test sends timestamps
        release(Qt::Key_Escape, 0);
    }
    EXPECT_EQ(button.presses, 2);
}

TEST_F(GuardedApplicationTest, ACopiedReleaseWithoutATimestampHidesNoRepetition) {
    release(Qt::Key_Return, 1000);
    release(Qt::Key_Return, 0);
    press(Qt::Key_Return, 1000);
    EXPECT_EQ(clicks, 0);
}

TEST_F(GuardedApplicationTest, NavigationKeysRepeat) {
    QPushButton second(&window);
    QPushButton third(&window);
    for (QPushButton* each : {&second, &third}) {
        each->show();
        each->setAutoDefault(true);
    }
    press(Qt::Key_Tab, 1000);
    release(Qt::Key_Tab, 1500, true);
    press(Qt::Key_Tab, 1500, true);
    EXPECT_TRUE(third.hasFocus());
}

} // namespace vantry
