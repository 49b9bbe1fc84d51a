#pragma once

#include <QByteArray>
#include <QImage>
#include <jxl/encode.h>
#include <libheif/heif.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantry {

inline std::string littleEndian(unsigned value) {
    return {static_cast<char>(value & 0xffU), static_cast<char>(value >> 8U & 0xffU)};
}

/// A GIF of frames of one size, with 216 colours and without compression.
inline std::string gifOf(const std::vector<QImage>& frames) {
    const auto width = static_cast<unsigned>(frames.front().width());
    const auto height = static_cast<unsigned>(frames.front().height());
    std::string gif = "GIF89a" + littleEndian(width) + littleEndian(height) + std::string("\xf7\0\0", 3);
    for (int i = 0; i < 256; ++i)
        for (const int level : {i / 36 % 6, i / 6 % 6, i % 6})
            gif += static_cast<char>(level * 51);
    for (const QImage& frame : frames) {
        gif += std::string("\x21\xf9\x04\x04\x0a\0\0\0", 8); // shown for a tenth of a second
        gif += ',' + littleEndian(0) + littleEndian(0) + littleEndian(width) + littleEndian(height) + '\0' + '\x08';
        std::string codes;
        unsigned bits = 0;
        unsigned count = 0;
        const auto add = [&](unsigned code) {
            bits |= code << count;
            for (count += 9; count >= 8; count -= 8, bits >>= 8U)
                codes += static_cast<char>(bits & 0xffU);
        };
        constexpr unsigned clear = 256;
        int sinceCleared = 0;
        add(clear);
        for (int y = 0; y < frame.height(); ++y)
            for (int x = 0; x < frame.width(); ++x) {
                const QRgb color = frame.pixel(x, y);
                const auto level = [](int component) { return static_cast<unsigned>((component + 25) / 51); };
                add(level(qRed(color)) * 36 + level(qGreen(color)) * 6 + level(qBlue(color)));
                if (++sinceCleared == 200) { // before codes become longer
                    add(clear);
                    sinceCleared = 0;
                }
            }
        add(clear + 1);
        add(0); // the last bits
        for (std::size_t at = 0; at < codes.size(); at += 255) {
            const std::string block = codes.substr(at, 255);
            gif += static_cast<char>(block.size()) + block;
        }
        gif += '\0';
    }
    return gif + ';';
}

/// A JPEG file with one more segment, after its begin.
inline std::string withSegment(const std::string& jpeg, char marker, const std::string& contents) {
    const std::size_t length = contents.size() + 2;
    std::string segment = {'\xff', marker, static_cast<char>(length >> 8U), static_cast<char>(length & 0xffU)};
    return jpeg.substr(0, 2) + segment + contents + jpeg.substr(2);
}

/// A JPEG file with an orientation of EXIF, 1 to 8.
inline std::string withOrientation(const std::string& jpeg, int orientation) {
    std::string exif("Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 25);
    exif += static_cast<char>(orientation);
    exif += std::string("\0\0\0\0\0\0", 6);
    return withSegment(jpeg, '\xe1', exif);
}

/// A grey JPEG file with the profile of a device that shows what it is given in linear light.
inline std::string withLinearGreyProfile(const std::string& jpeg) {
    const auto number = [](std::uint32_t value) {
        std::string text;
        for (unsigned shift = 32; shift > 0; shift -= 8)
            text += static_cast<char>(value >> (shift - 8) & 0xffU);
        return text;
    };
    const std::string d50 = number(0xf6d6) + number(0x10000) + number(0xd32d);
    const std::string zero(4, '\0');
    const std::string white = "XYZ " + zero + d50;
    const std::string curve = "curv" + zero + zero; // of no points
    constexpr std::uint32_t tags = 128 + 4 + 2 * 12;
    std::string profile = zero + zero + number(0x02400000) + "mntrGRAYXYZ " + std::string(12, '\0') + "acsp" +
                          std::string(28, '\0') + d50;
    profile.resize(128);
    profile += number(2) + "wtpt" + number(tags) + number(20) + "kTRC" + number(tags + 20) + number(12) + white + curve;
    profile.replace(0, 4, number(static_cast<std::uint32_t>(profile.size())));
    return withSegment(jpeg, '\xe2', std::string("ICC_PROFILE\0\1\1", 14) + profile);
}

struct JxlOptions {
    bool isLossless = true;
    bool isContained = false; ///< in boxes, as a file with metadata is
    JxlOrientation orientation = JXL_ORIENT_IDENTITY;
    std::optional<QByteArray> icc = std::nullopt;
};

/// `image` as JPEG XL.
inline std::string jxlOf(const QImage& image, const JxlOptions& options = {}) {
    const auto check = [](bool succeeded) {
        if (!succeeded)
            throw std::runtime_error("cannot encode JPEG XL");
    };
    const bool hasAlpha = image.hasAlphaChannel();
    const QImage source = image.convertToFormat(QImage::Format_RGBA8888);
    const std::unique_ptr<JxlEncoder, decltype(&JxlEncoderDestroy)> encoder(JxlEncoderCreate(nullptr),
                                                                            JxlEncoderDestroy);
    JxlEncoderUseContainer(encoder.get(), options.isContained ? JXL_TRUE : JXL_FALSE);
    JxlBasicInfo facts;
    JxlEncoderInitBasicInfo(&facts);
    facts.xsize = static_cast<std::uint32_t>(source.width());
    facts.ysize = static_cast<std::uint32_t>(source.height());
    facts.bits_per_sample = 8;
    facts.orientation = options.orientation;
    facts.uses_original_profile = options.isLossless ? JXL_TRUE : JXL_FALSE;
    facts.num_extra_channels = hasAlpha ? 1 : 0;
    facts.alpha_bits = hasAlpha ? 8 : 0;
    check(JxlEncoderSetBasicInfo(encoder.get(), &facts) == JXL_ENC_SUCCESS);
    if (options.icc) {
        check(JxlEncoderSetICCProfile(encoder.get(), reinterpret_cast<const std::uint8_t*>(options.icc->constData()),
                                      static_cast<std::size_t>(options.icc->size())) == JXL_ENC_SUCCESS);
    } else {
        JxlColorEncoding srgb;
        JxlColorEncodingSetToSRGB(&srgb, JXL_FALSE);
        check(JxlEncoderSetColorEncoding(encoder.get(), &srgb) == JXL_ENC_SUCCESS);
    }
    auto* settings = JxlEncoderFrameSettingsCreate(encoder.get(), nullptr);
    JxlEncoderFrameSettingsSetOption(settings, JXL_ENC_FRAME_SETTING_EFFORT, 3);
    constexpr float hardlyVisible = 0.3F;
    check(options.isLossless || JxlEncoderSetFrameDistance(settings, hardlyVisible) == JXL_ENC_SUCCESS);
    check(JxlEncoderSetFrameLossless(settings, options.isLossless ? JXL_TRUE : JXL_FALSE) == JXL_ENC_SUCCESS);
    const QImage pixels = hasAlpha ? source : source.convertToFormat(QImage::Format_RGB888);
    const JxlPixelFormat format{hasAlpha ? 4U : 3U, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 4}; // as QImage aligns rows
    check(JxlEncoderAddImageFrame(settings, &format, pixels.constBits(),
                                  static_cast<std::size_t>(pixels.sizeInBytes())) == JXL_ENC_SUCCESS);
    JxlEncoderCloseInput(encoder.get());
    std::string file;
    std::vector<std::uint8_t> chunk(1 << 16);
    for (auto status = JXL_ENC_NEED_MORE_OUTPUT; status == JXL_ENC_NEED_MORE_OUTPUT;) {
        std::uint8_t* next = chunk.data();
        std::size_t left = chunk.size();
        status = JxlEncoderProcessOutput(encoder.get(), &next, &left);
        check(status != JXL_ENC_ERROR);
        file.append(chunk.begin(), chunk.end() - static_cast<std::ptrdiff_t>(left));
    }
    return file;
}

struct HeicOptions {
    heif_orientation orientation = heif_orientation_normal;
    std::optional<QByteArray> icc = std::nullopt;
    std::optional<heif_color_primaries> primaries = std::nullopt; ///< with the two that follow
    heif_matrix_coefficients matrix = heif_matrix_coefficients_ITU_R_BT_709_5;
    bool isFullRange = true;
};

/// Whether `heicOf` can work.
inline bool canEncodeHeic() { return heif_have_encoder_for_format(heif_compression_HEVC) != 0; }

/// Writes `image` as HEIC.
inline void writeHeic(const QImage& image, const std::string& file, const HeicOptions& options = {}) {
    const auto check = [](const heif_error& error) {
        if (error.code != heif_error_Ok)
            throw std::runtime_error(error.message);
    };
    const bool hasAlpha = image.hasAlphaChannel();
    const QImage source = image.convertToFormat(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    const std::unique_ptr<heif_context, decltype(&heif_context_free)> context(heif_context_alloc(), heif_context_free);
    heif_encoder* encoder = nullptr;
    check(heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &encoder));
    const std::unique_ptr<heif_encoder, decltype(&heif_encoder_release)> ownedEncoder(encoder, heif_encoder_release);
    check(heif_encoder_set_lossy_quality(encoder, 95));
    check(heif_encoder_set_parameter_string(encoder, "preset", "ultrafast"));

    heif_image* made = nullptr;
    check(heif_image_create(source.width(), source.height(), heif_colorspace_RGB,
                            hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, &made));
    const std::unique_ptr<heif_image, decltype(&heif_image_release)> ownedImage(made, heif_image_release);
    check(heif_image_add_plane(made, heif_channel_interleaved, source.width(), source.height(), 8));
    int stride = 0;
    std::uint8_t* plane = heif_image_get_plane(made, heif_channel_interleaved, &stride);
    for (int y = 0; y < source.height(); ++y)
        std::copy_n(source.constScanLine(y), source.width() * (hasAlpha ? 4 : 3), plane + std::ptrdiff_t{y} * stride);
    if (options.icc)
        check(heif_image_set_raw_color_profile(made, "prof", options.icc->constData(),
                                               static_cast<std::size_t>(options.icc->size())));
    const std::unique_ptr<heif_encoding_options, decltype(&heif_encoding_options_free)> encoding(
        heif_encoding_options_alloc(), heif_encoding_options_free);
    encoding->image_orientation = options.orientation;
    const std::unique_ptr<heif_color_profile_nclx, decltype(&heif_nclx_color_profile_free)> nclx(
        heif_nclx_color_profile_alloc(), heif_nclx_color_profile_free);
    if (options.primaries) {
        nclx->color_primaries = *options.primaries;
        nclx->transfer_characteristics = heif_transfer_characteristic_IEC_61966_2_1;
        nclx->matrix_coefficients = options.matrix;
        nclx->full_range_flag = options.isFullRange ? 1 : 0;
        check(heif_image_set_nclx_color_profile(made, nclx.get()));
        encoding->output_nclx_profile = nclx.get();
        encoding->macOS_compatibility_workaround_no_nclx_profile = 0;
    }
    heif_image_handle* handle = nullptr;
    check(heif_context_encode_image(context.get(), made, encoder, encoding.get(), &handle));
    heif_image_handle_release(handle);
    check(heif_context_write_to_file(context.get(), file.c_str()));
}

} // namespace vantry
