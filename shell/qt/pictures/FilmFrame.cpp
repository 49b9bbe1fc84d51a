#include "shell/qt/pictures/FilmFrame.h"

#include "shell/qt/pictures/FilmFile.h"
#include "shell/qt/pictures/PictureColors.h"

#include <QImage>
#include <QTransform>
#include <array>
#include <memory>

extern "C" {
#include <libswscale/swscale.h>
}

namespace vantry {

namespace {

constexpr int side = static_cast<int>(pictureSide);
constexpr std::array seconds{75, 10, 0};
constexpr int fullScale = 1 << 16; // of contrast and saturation

struct FreeScaler {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

// What is not said is what was usual for films of that size.
int colorMatrixOf(const AVFrame& frame) {
    constexpr int heightOfHighDefinition = 720;
    switch (frame.colorspace) {
    case AVCOL_SPC_UNSPECIFIED: return frame.height < heightOfHighDefinition ? SWS_CS_ITU601 : SWS_CS_ITU709;
    case AVCOL_SPC_BT709: return SWS_CS_ITU709;
    case AVCOL_SPC_FCC: return SWS_CS_FCC;
    case AVCOL_SPC_SMPTE240M: return SWS_CS_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL: return SWS_CS_BT2020;
    default: return SWS_CS_ITU601;
    }
}

QImage squareOf(const AVFrame& frame) {
    const std::unique_ptr<SwsContext, FreeScaler> scaler(sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), side, side, AV_PIX_FMT_RGBA,
        SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP, nullptr, nullptr, nullptr));
    const FilmImage scaled(av_frame_alloc());
    if (!scaler || !scaled)
        return {};
    const bool isFullRange = frame.color_range == AVCOL_RANGE_JPEG;
    // Refused for what is stored as red, green and blue, and not needed there.
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(colorMatrixOf(frame)), isFullRange ? 1 : 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, fullScale, fullScale);
    scaled->width = scaled->height = side;
    scaled->format = AV_PIX_FMT_RGBA;
    if (av_frame_get_buffer(scaled.get(), 0) < 0 ||
        sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, scaled->data, scaled->linesize) <= 0)
        return {};
    return QImage(scaled->data[0], side, side, scaled->linesize[0], QImage::Format_RGBA8888).copy();
}

// A square is turned by quarters, and mirrored, without becoming anything else.
QImage upright(const QImage& square, const std::int32_t* matrix) {
    if (!matrix)
        return square;
    constexpr double one = 1 << 16;
    const QTransform transform(matrix[0] / one, matrix[1] / one, matrix[3] / one, matrix[4] / one, 0, 0);
    const QImage turned = square.transformed(transform);
    return turned.size() == square.size() ? turned : square;
}

} // namespace

std::optional<PicturePixels> decodeFilm(int file) {
    const auto film = FilmFile::open(file);
    if (!film)
        return std::nullopt;
    for (const int time : seconds) {
        const FilmImage frame = film->frameAt(time);
        if (!frame)
            continue;
        const QImage square = squareOf(*frame);
        if (!square.isNull())
            return pixelsInSrgb(upright(square, film->displayMatrix()),
                                colorSpaceOf(frame->color_primaries, frame->color_trc));
    }
    return std::nullopt;
}

} // namespace vantry
