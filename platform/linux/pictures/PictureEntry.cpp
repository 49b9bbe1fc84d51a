#include "platform/linux/PictureWorker.h"
#include "platform/linux/pictures/Decoders.h"

namespace vantry {

namespace {

std::optional<PicturePixels> decodePicture(std::span<const std::byte> contents) {
    if (isHeif(contents))
        return decodeHeif(contents);
    if (isJxl(contents))
        return decodeJxl(contents);
    return isWebp(contents) ? decodeWebp(contents) : decodeWithQt(contents);
}

} // namespace

} // namespace vantry

extern "C" __attribute__((visibility("default"))) std::optional<vantry::PicturePixels>
ombrelDecodePicture(std::span<const std::byte> contents) {
    return vantry::decodePicture(contents);
}

extern "C" __attribute__((visibility("default"))) std::optional<vantry::PicturePixels> ombrelDecodeFilm(int file) {
    return vantry::decodeFilm(file);
}
