#include "shell/qt/pictures/QtPicture.h"

#include "shell/qt/pictures/AreaAverage.h"
#include "shell/qt/pictures/PictureColors.h"
#include "shell/qt/pictures/PictureEnd.h"

#include <QBuffer>
#include <QByteArray>
#include <QColorSpace>
#include <QImage>
#include <QImageReader>
#include <QTransform>
#include <algorithm>
#include <array>
#include <utility>

namespace vantry {

namespace {

constexpr int side = static_cast<int>(pictureSide);
constexpr int largestAllocation = 768; // MB

enum class Format { gif, jpeg, png, svg, tiff };

std::optional<Format> formatNamed(const QByteArray& name) {
    static constexpr std::array known{
        std::pair{"gif", Format::gif}, std::pair{"jpeg", Format::jpeg}, std::pair{"png", Format::png},
        std::pair{"svg", Format::svg}, std::pair{"tiff", Format::tiff},
    };
    for (const auto& [spelling, format] : known)
        if (name == spelling)
            return format;
    return std::nullopt;
}

bool isCutOff(Format format, std::span<const std::byte> contents) {
    switch (format) {
    case Format::gif: return !hasWholeGifFrame(contents);
    case Format::jpeg: return !isWholeJpeg(contents);
    default: return false; // their decoders see it
    }
}

// JPEG's decoder halves the size up to three times while it decodes, which takes next to no memory.
QSize decodedSize(QSize size) {
    constexpr int enough = 2 * side;
    int divisor = 1;
    while (divisor < 8 && size.width() / (2 * divisor) >= enough && size.height() / (2 * divisor) >= enough)
        divisor *= 2;
    return {(size.width() + divisor - 1) / divisor, (size.height() + divisor - 1) / divisor};
}

QImage averaged(const QImage& image) {
    AreaAverage average(image.width(), image.height());
    constexpr int bandHeight = 16; // converted at a time: the whole picture may fit into memory once only
    for (int y = 0; y < image.height(); y += bandHeight) {
        const int rows = std::min(bandHeight, image.height() - y);
        QImage band(image.constScanLine(y), image.width(), rows, image.bytesPerLine(), image.format());
        band.setColorTable(image.colorTable());
        band = std::move(band).convertToFormat(QImage::Format_RGBA8888);
        for (int row = 0; row < rows; ++row)
            average.addRow({band.constScanLine(row), static_cast<std::size_t>(image.width()) * 4});
    }
    return average.square();
}

// A square stays one, so it is turned after it was reduced.
QImage upright(const QImage& square, QImageIOHandler::Transformations transformation) {
    const QImage mirrored = square.mirrored(transformation.testFlag(QImageIOHandler::TransformationMirror),
                                            transformation.testFlag(QImageIOHandler::TransformationFlip));
    constexpr int clockwise = 90;
    return transformation.testFlag(QImageIOHandler::TransformationRotate90)
               ? mirrored.transformed(QTransform().rotate(clockwise))
               : mirrored;
}

} // namespace

std::optional<PicturePixels> decodeWithQt(std::span<const std::byte> contents) {
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(contents.data()),
                                               static_cast<qsizetype>(contents.size()));
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);

    QImageReader::setAllocationLimit(largestAllocation);
    QImageReader reader(&buffer);
    const auto format = formatNamed(reader.format());
    if (!format || isCutOff(*format, contents))
        return std::nullopt;
    reader.setAutoTransform(false);
    const auto transformation = reader.transformation();
    if (format == Format::svg)
        reader.setScaledSize({side, side});
    else if (const QSize size = reader.size(); format == Format::jpeg && !size.isEmpty())
        reader.setScaledSize(decodedSize(size));
    const QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    const QColorSpace space = image.colorSpace();
    return pixelsInSrgb(upright(averaged(image), transformation), space);
}

} // namespace vantry
