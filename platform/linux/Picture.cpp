#include "platform/Picture.h"

#include "base/Deadline.h"
#include "platform/ChildProcess.h"
#include "platform/SupervisedChild.h"
#include "platform/linux/PictureWorker.h"

#include <cstring>

namespace vantry {

namespace {

constexpr std::chrono::seconds longestDecoding{20};
constexpr std::size_t outputSize = pictureSide * pictureSide * sizeof(PicturePixel);

} // namespace

std::optional<PicturePixels> readPictureInWorker(const std::filesystem::path& executable,
                                                 const std::filesystem::path& file,
                                                 std::chrono::milliseconds patience) {
    const auto output = programOutput(executable, {pictureWorkerFlag, file.native()}, outputSize, deadlineIn(patience));
    if (!output || output->size() != outputSize)
        return std::nullopt;
    PicturePixels pixels(pictureSide * pictureSide);
    std::memcpy(pixels.data(), output->data(), outputSize);
    return pixels;
}

std::optional<PicturePixels> readPicture(const std::filesystem::path& file) {
    const auto executable = ownExecutable();
    return executable ? readPictureInWorker(*executable, file, longestDecoding) : std::nullopt;
}

} // namespace vantry
