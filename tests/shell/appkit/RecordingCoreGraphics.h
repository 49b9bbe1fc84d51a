#pragma once

#include "tests/support/RecordingCanvas.h"

namespace vantry {

/// Implements the few functions of Core Graphics that `AppKitCanvas` calls. It keeps the state that they change
/// (colours, line width, the path) and records what is painted as canvas operations, so that a wrong or misplaced call
/// gives a different record. For one test at a time.
class RecordingCoreGraphics {
public:
    RecordingCoreGraphics();
    RecordingCoreGraphics(const RecordingCoreGraphics&) = delete;
    RecordingCoreGraphics& operator=(const RecordingCoreGraphics&) = delete;
    ~RecordingCoreGraphics();

    /// A gradient is one operation, if the clip and the saved state around it are correct.
    [[nodiscard]] Drawing calls() const;
    /// The number of colours, paths, gradients and colour spaces that were not released.
    [[nodiscard]] int livingObjects() const;
    /// Calls that would abort on a Mac or paint without a path; empty if there were none.
    [[nodiscard]] std::string mistakes() const;
};

/// The value of a role in these tests.
[[nodiscard]] Rgba colorOfRole(SystemColor role);

} // namespace vantry
