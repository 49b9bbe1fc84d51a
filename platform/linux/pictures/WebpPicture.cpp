#include "platform/linux/pictures/Decoders.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <webp/decode.h>
#include <webp/demux.h>

namespace vantry {

namespace {

using Demuxer = std::unique_ptr<WebPDemuxer, decltype(&WebPDemuxDelete)>;

struct Frame {
    WebPIterator iterator{};
    Frame() = default;
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame() { WebPDemuxReleaseIterator(&iterator); }
};

// A large picture takes next to no memory when it is scaled while it is decoded.
QImage decodedSquare(const WebPData& frame) {
    QImage square(squareSide, squareSide, QImage::Format_RGBA8888);
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        return {};
    config.options.use_scaling = 1;
    config.options.scaled_width = config.options.scaled_height = squareSide;
    config.output.colorspace = MODE_RGBA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {.rgba = square.bits(),
                            .stride = static_cast<int>(square.bytesPerLine()),
                            .size = static_cast<std::size_t>(square.sizeInBytes())};
    return WebPDecode(frame.bytes, frame.size, &config) == VP8_STATUS_OK ? square : QImage();
}

QColorSpace profileOf(const WebPDemuxer* demuxer) {
    WebPChunkIterator chunk{};
    QColorSpace space;
    if (WebPDemuxGetChunk(demuxer, "ICCP", 1, &chunk)) {
        space = QColorSpace::fromIccProfile(
            QByteArray(reinterpret_cast<const char*>(chunk.chunk.bytes), static_cast<qsizetype>(chunk.chunk.size)));
        WebPDemuxReleaseChunkIterator(&chunk);
    }
    return space;
}

} // namespace

bool isWebp(PictureContents contents) {
    constexpr std::size_t headerSize = 12;
    return contents.size() > headerSize && std::memcmp(contents.data(), "RIFF", 4) == 0 &&
           std::memcmp(contents.data() + 8, "WEBP", 4) == 0;
}

std::optional<PicturePixels> decodeWebp(PictureContents contents) {
    const WebPData data{.bytes = reinterpret_cast<const std::uint8_t*>(contents.data()), .size = contents.size()};
    const Demuxer demuxer(WebPDemux(&data), WebPDemuxDelete);
    Frame first;
    if (!demuxer || !WebPDemuxGetFrame(demuxer.get(), 1, &first.iterator))
        return std::nullopt;
    const QImage square = decodedSquare(first.iterator.fragment);
    if (square.isNull())
        return std::nullopt;
    return pixelsInSrgb(square, profileOf(demuxer.get()));
}

} // namespace vantry
