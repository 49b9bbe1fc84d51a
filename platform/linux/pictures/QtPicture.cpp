#include "platform/linux/pictures/Decoders.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>
#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace vantry {

std::optional<PicturePixels> decodeWithQt(PictureContents contents) {
    constexpr std::array<std::string_view, 5> known{"gif", "jpeg", "png", "svg", "tiff"};
    constexpr int largestAllocation = 768; // MB
    QBuffer buffer;
    buffer.setData(QByteArray::fromRawData(reinterpret_cast<const char*>(contents.data()),
                                           static_cast<qsizetype>(contents.size())));
    buffer.open(QIODevice::ReadOnly);

    QImageReader::setAllocationLimit(largestAllocation);
    QImageReader reader(&buffer);
    const std::string format = reader.format().toStdString();
    if (std::ranges::find(known, format) == known.end())
        return std::nullopt;
    reader.setAutoTransform(true);
    if (format == "jpeg" || format == "svg") // scaled while they are decoded, which takes next to no memory
        reader.setScaledSize({squareSide, squareSide});
    const QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    return pixelsInSrgb(averagedSquare(image), image.colorSpace());
}

} // namespace vantry
