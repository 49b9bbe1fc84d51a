#pragma once

#include "tests/support/RecordingCanvas.h"

namespace vantry {

/// Stands in for the few functions of Core Graphics that `AppKitCanvas` calls. It keeps the state that they change
/// (colours, line width, the path) and writes down what is painted with it, as a canvas operation would have it: what
/// is wrong or out of order gives another picture. For one test at a time.
class RecordingCoreGraphics {
public:
    RecordingCoreGraphics();
    RecordingCoreGraphics(const RecordingCoreGraphics&) = delete;
    RecordingCoreGraphics& operator=(const RecordingCoreGraphics&) = delete;
    ~RecordingCoreGraphics();

    /// A gradient is one operation, with the clip and the states around it, if they are as they have to be.
    [[nodiscard]] Drawing calls() const;
    /// Colours, paths, gradients and colour spaces that were created and not released.
    [[nodiscard]] int livingObjects() const;
    /// What would have ended the process on a Mac, or painted with a path that is not there; empty when all was well.
    [[nodiscard]] std::string mistakes() const;
};

/// The value that the stand-in gives a role.
[[nodiscard]] Rgba colorOfRole(SystemColor role);

} // namespace vantry
