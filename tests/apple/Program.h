#pragma once

#include "cleanup/finding/CleanupScanner.h"
#include "cleanup/measuring/FilesystemWorker.h"
#include "platform/Picture.h"

#include <QGuiApplication>
#include <cstdlib>
#include <string>
#include <vector>

namespace vantry::apple {

void prepareDesktop(); // tests/apple/appkit/Desktop.h, which is Objective-C

/// What a program does first that runs the application: that starts its own executable as a worker.
inline void runWorkerIfRequested(int count, char** values) {
    const std::vector<std::string> arguments(values + 1, values + count);
    if (const auto status = runPictureWorkerIfRequested(arguments))
        std::_Exit(*status);
    if (CleanupScanner::runFilesystemWorkerIfRequested(arguments))
        std::_Exit(EXIT_SUCCESS);
}

/// The fonts, for as long as it lives, and the doubles.
class Program {
public:
    Program(int& count, char** values) : application_(count, values) { prepareDesktop(); }

private:
    const bool isOffscreen_ = qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application_;
};

} // namespace vantry::apple
