#include "shell/qt/pictures/WebpPicture.h"

#include "shell/qt/pictures/AreaAverage.h"
#include "shell/qt/pictures/PictureColors.h"

#include <QColorSpace>
#include <QImage>
#include <cstdint>
#include <cstring>
#include <memory>
#include <webp/decode.h>
#include <webp/demux.h>

namespace vantry {

namespace {

constexpr int side = static_cast<int>(pictureSide);

WebPData dataOf(std::span<const std::byte> contents) {
    return {.bytes = reinterpret_cast<const std::uint8_t*>(contents.data()), .size = contents.size()};
}

using Demuxer = std::unique_ptr<WebPDemuxer, decltype(&WebPDemuxDelete)>;
using AnimationDecoder = std::unique_ptr<WebPAnimDecoder, decltype(&WebPAnimDecoderDelete)>;

struct Frame {
    WebPIterator iterator{};
    Frame() = default;
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame() { WebPDemuxReleaseIterator(&iterator); }
};

QImage scaledWhileDecoding(const WebPData& picture) {
    QImage square(side, side, QImage::Format_RGBA8888);
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        return {};
    config.options.use_scaling = 1;
    config.options.scaled_width = config.options.scaled_height = side;
    config.output.colorspace = MODE_RGBA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {.rgba = square.bits(),
                            .stride = static_cast<int>(square.bytesPerLine()),
                            .size = static_cast<std::size_t>(square.sizeInBytes())};
    return WebPDecode(picture.bytes, picture.size, &config) == VP8_STATUS_OK ? square : QImage();
}

// The first frame is only a part of the picture: the rest of it shows nothing.
QImage composed(const WebPData& animation) {
    const AnimationDecoder decoder(WebPAnimDecoderNew(&animation, nullptr), WebPAnimDecoderDelete);
    WebPAnimInfo facts{};
    std::uint8_t* canvas = nullptr;
    int time = 0;
    if (!decoder || !WebPAnimDecoderGetInfo(decoder.get(), &facts) ||
        !WebPAnimDecoderGetNext(decoder.get(), &canvas, &time))
        return {};
    AreaAverage average(static_cast<int>(facts.canvas_width), static_cast<int>(facts.canvas_height));
    const std::size_t stride = std::size_t{facts.canvas_width} * 4;
    for (std::size_t y = 0; y < facts.canvas_height; ++y)
        average.addRow({canvas + y * stride, stride});
    return average.square();
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

bool isWebp(std::span<const std::byte> contents) {
    constexpr std::size_t headerSize = 12;
    return contents.size() > headerSize && std::memcmp(contents.data(), "RIFF", 4) == 0 &&
           std::memcmp(contents.data() + 8, "WEBP", 4) == 0;
}

std::optional<PicturePixels> decodeWebp(std::span<const std::byte> contents) {
    const WebPData data = dataOf(contents);
    const Demuxer demuxer(WebPDemux(&data), WebPDemuxDelete);
    Frame first;
    if (!demuxer || !WebPDemuxGetFrame(demuxer.get(), 1, &first.iterator))
        return std::nullopt;
    const auto& frame = first.iterator;
    const bool fillsCanvas =
        static_cast<std::uint32_t>(frame.width) == WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_WIDTH) &&
        static_cast<std::uint32_t>(frame.height) == WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_HEIGHT);
    const QImage square = fillsCanvas ? scaledWhileDecoding(frame.fragment) : composed(data);
    if (square.isNull())
        return std::nullopt;
    return pixelsInSrgb(square, profileOf(demuxer.get()));
}

} // namespace vantry
