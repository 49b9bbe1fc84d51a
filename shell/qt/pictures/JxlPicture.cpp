#include "shell/qt/pictures/JxlPicture.h"

#include "shell/qt/pictures/AreaAverage.h"
#include "shell/qt/pictures/PictureColors.h"

#include <QByteArray>
#include <QColorSpace>
#include <cstdint>
#include <jxl/decode.h>
#include <memory>
#include <vector>

namespace vantry {

namespace {

using Decoder = std::unique_ptr<JxlDecoder, decltype(&JxlDecoderDestroy)>;

constexpr std::uint64_t mostPixels = std::uint64_t{1} << 28;
constexpr std::size_t largestProfile = 4 << 20;
constexpr JxlPixelFormat rgba{
    .num_channels = 4, .data_type = JXL_TYPE_UINT8, .endianness = JXL_NATIVE_ENDIAN, .align = 0};

const std::uint8_t* bytesOf(std::span<const std::byte> contents) {
    return reinterpret_cast<const std::uint8_t*>(contents.data());
}

// Lossy pictures can be decoded to any space, and others keep their own.
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

bool isJxl(std::span<const std::byte> contents) {
    const auto signature = JxlSignatureCheck(bytesOf(contents), contents.size());
    return signature == JXL_SIG_CODESTREAM || signature == JXL_SIG_CONTAINER;
}

std::optional<PicturePixels> decodeJxl(std::span<const std::byte> contents) {
    const Decoder decoder(JxlDecoderCreate(nullptr), JxlDecoderDestroy);
    constexpr int events = JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE;
    if (!decoder || JxlDecoderSubscribeEvents(decoder.get(), events) != JXL_DEC_SUCCESS ||
        JxlDecoderSetUnpremultiplyAlpha(decoder.get(), JXL_TRUE) != JXL_DEC_SUCCESS ||
        JxlDecoderSetInput(decoder.get(), bytesOf(contents), contents.size()) != JXL_DEC_SUCCESS)
        return std::nullopt;
    JxlDecoderCloseInput(decoder.get());

    JxlBasicInfo facts{};
    QColorSpace space;
    std::vector<std::uint8_t> pixels;
    for (;;)
        switch (JxlDecoderProcessInput(decoder.get())) {
        case JXL_DEC_BASIC_INFO:
            if (JxlDecoderGetBasicInfo(decoder.get(), &facts) != JXL_DEC_SUCCESS ||
                std::uint64_t{facts.xsize} * facts.ysize > mostPixels)
                return std::nullopt;
            break;
        case JXL_DEC_COLOR_ENCODING: space = spaceOf(decoder.get(), facts.num_color_channels == 1); break;
        case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
            pixels.resize(std::size_t{facts.xsize} * facts.ysize * rgba.num_channels);
            if (JxlDecoderSetImageOutBuffer(decoder.get(), &rgba, pixels.data(), pixels.size()) != JXL_DEC_SUCCESS)
                return std::nullopt;
            break;
        case JXL_DEC_FULL_IMAGE: {
            AreaAverage average(static_cast<int>(facts.xsize), static_cast<int>(facts.ysize));
            const std::size_t stride = std::size_t{facts.xsize} * rgba.num_channels;
            for (std::size_t y = 0; y < facts.ysize; ++y)
                average.addRow({pixels.data() + y * stride, stride});
            return pixelsInSrgb(average.square(), space);
        }
        default: return std::nullopt;
        }
}

} // namespace vantry
