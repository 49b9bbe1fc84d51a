#include "platform/linux/pictures/Decoders.h"

#include <QByteArray>
#include <cstdint>
#include <jxl/decode.h>
#include <memory>

namespace vantry {

namespace {

using Decoder = std::unique_ptr<JxlDecoder, decltype(&JxlDecoderDestroy)>;

constexpr std::size_t largestProfile = 4 << 20;
constexpr JxlPixelFormat rgba{
    .num_channels = 4, .data_type = JXL_TYPE_UINT8, .endianness = JXL_NATIVE_ENDIAN, .align = 0};

const std::uint8_t* bytesOf(PictureContents contents) { return reinterpret_cast<const std::uint8_t*>(contents.data()); }

// A lossy picture is decoded to sRGB, a lossless one keeps its own space.
QColorSpace spaceOf(JxlDecoder* decoder, bool isGrey) {
    JxlColorEncoding srgb{};
    srgb.color_space = isGrey ? JXL_COLOR_SPACE_GRAY : JXL_COLOR_SPACE_RGB;
    srgb.white_point = JXL_WHITE_POINT_D65;
    srgb.primaries = JXL_PRIMARIES_SRGB;
    srgb.transfer_function = JXL_TRANSFER_FUNCTION_SRGB;
    srgb.rendering_intent = JXL_RENDERING_INTENT_RELATIVE;
    JxlDecoderSetPreferredColorProfile(decoder, &srgb);

    std::size_t size = 0;
#if JPEGXL_NUMERIC_VERSION < JPEGXL_COMPUTE_NUMERIC_VERSION(0, 9, 0)
    const auto sizeIs = JxlDecoderGetICCProfileSize(decoder, nullptr, JXL_COLOR_PROFILE_TARGET_DATA, &size);
#else
    const auto sizeIs = JxlDecoderGetICCProfileSize(decoder, JXL_COLOR_PROFILE_TARGET_DATA, &size);
#endif
    if (sizeIs != JXL_DEC_SUCCESS || size > largestProfile)
        return {};
    QByteArray profile(static_cast<qsizetype>(size), '\0');
    auto* bytes = reinterpret_cast<std::uint8_t*>(profile.data());
#if JPEGXL_NUMERIC_VERSION < JPEGXL_COMPUTE_NUMERIC_VERSION(0, 9, 0)
    const auto read = JxlDecoderGetColorAsICCProfile(decoder, nullptr, JXL_COLOR_PROFILE_TARGET_DATA, bytes, size);
#else
    const auto read = JxlDecoderGetColorAsICCProfile(decoder, JXL_COLOR_PROFILE_TARGET_DATA, bytes, size);
#endif
    return read == JXL_DEC_SUCCESS ? QColorSpace::fromIccProfile(profile) : QColorSpace();
}

} // namespace

bool isJxl(PictureContents contents) {
    const auto signature = JxlSignatureCheck(bytesOf(contents), contents.size());
    return signature == JXL_SIG_CODESTREAM || signature == JXL_SIG_CONTAINER;
}

std::optional<PicturePixels> decodeJxl(PictureContents contents) {
    const Decoder decoder(JxlDecoderCreate(nullptr), JxlDecoderDestroy);
    constexpr int events = JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE;
    if (!decoder || JxlDecoderSubscribeEvents(decoder.get(), events) != JXL_DEC_SUCCESS ||
        JxlDecoderSetUnpremultiplyAlpha(decoder.get(), JXL_TRUE) != JXL_DEC_SUCCESS ||
        JxlDecoderSetInput(decoder.get(), bytesOf(contents), contents.size()) != JXL_DEC_SUCCESS)
        return std::nullopt;
    JxlDecoderCloseInput(decoder.get());

    JxlBasicInfo facts{};
    QColorSpace space;
    QImage image;
    for (;;)
        switch (JxlDecoderProcessInput(decoder.get())) {
        case JXL_DEC_BASIC_INFO:
            if (JxlDecoderGetBasicInfo(decoder.get(), &facts) != JXL_DEC_SUCCESS)
                return std::nullopt;
            break;
        case JXL_DEC_COLOR_ENCODING: space = spaceOf(decoder.get(), facts.num_color_channels == 1); break;
        case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
            image = QImage(static_cast<int>(facts.xsize), static_cast<int>(facts.ysize), QImage::Format_RGBA8888);
            if (image.isNull() ||
                JxlDecoderSetImageOutBuffer(decoder.get(), &rgba, image.bits(),
                                            static_cast<std::size_t>(image.sizeInBytes())) != JXL_DEC_SUCCESS)
                return std::nullopt;
            break;
        case JXL_DEC_FULL_IMAGE: return pixelsInSrgb(averagedSquare(image), space);
        default: return std::nullopt;
        }
}

} // namespace vantry
