#include <gtest/gtest.h>

#include <QApplication>

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    qputenv("QT_QPA_PLATFORM", "offscreen"); // no display is needed, and none is used
    const QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
