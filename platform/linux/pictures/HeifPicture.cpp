#include "platform/linux/pictures/Decoders.h"

#include <QByteArray>
#include <algorithm>
#include <cstdint>
#include <libheif/heif.h>
#include <memory>

namespace vantry {

namespace {

template <auto Release>
struct Releaser {
    template <class Object>
    void operator()(Object* object) const {
        Release(object);
    }
};

using Context = std::unique_ptr<heif_context, Releaser<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Releaser<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Releaser<heif_image_release>>;
using Nclx = std::unique_ptr<heif_color_profile_nclx, Releaser<heif_nclx_color_profile_free>>;

bool succeeded(const heif_error& error) { return error.code == heif_error_Ok; }

Handle primaryPicture(heif_context* context) {
    heif_image_handle* handle = nullptr;
    return Handle(succeeded(heif_context_get_primary_image_handle(context, &handle)) ? handle : nullptr);
}

Image decoded(const heif_image_handle* handle, bool hasAlpha) {
    heif_image* image = nullptr;
    const auto chroma = hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
    return Image(succeeded(heif_decode_image(handle, &image, heif_colorspace_RGB, chroma, nullptr)) ? image : nullptr);
}

QImage viewOf(const heif_image* image, bool hasAlpha) {
    int stride = 0;
    const std::uint8_t* bytes = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    if (!bytes)
        return {};
    return {bytes, heif_image_get_primary_width(image), heif_image_get_primary_height(image), stride,
            hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888};
}

// The profile of the file wins over that of the coded picture.
Nclx nclxOf(const heif_image_handle* handle, const heif_image* image) {
    heif_color_profile_nclx* nclx = nullptr;
    if (!succeeded(heif_image_handle_get_nclx_color_profile(handle, &nclx)) &&
        !succeeded(heif_image_get_nclx_color_profile(image, &nclx)))
        nclx = nullptr;
    return Nclx(nclx);
}

QColorSpace iccProfileOf(const heif_image_handle* handle) {
    QByteArray profile(static_cast<qsizetype>(heif_image_handle_get_raw_color_profile_size(handle)), '\0');
    const auto type = heif_image_handle_get_color_profile_type(handle);
    if ((type != heif_color_profile_type_prof && type != heif_color_profile_type_rICC) || profile.isEmpty() ||
        !succeeded(heif_image_handle_get_raw_color_profile(handle, profile.data())))
        return {};
    return QColorSpace::fromIccProfile(profile);
}

QColorSpace spaceOf(const heif_image_handle* handle, const heif_color_profile_nclx* nclx) {
    const QColorSpace profile = iccProfileOf(handle);
    if (profile.isValid() || !nclx)
        return profile;
    return colorSpaceOf(nclx->color_primaries, nclx->transfer_characteristics);
}

} // namespace

bool isHeif(PictureContents contents) {
    constexpr std::size_t enough = 4096; // the file type box with all its brands
    const auto filetype = heif_check_filetype(reinterpret_cast<const std::uint8_t*>(contents.data()),
                                              static_cast<int>(std::min(contents.size(), enough)));
    return filetype == heif_filetype_yes_supported || filetype == heif_filetype_maybe;
}

std::optional<PicturePixels> decodeHeif(PictureContents contents) {
    const Context context(heif_context_alloc());
    if (!context || !succeeded(heif_context_read_from_memory_without_copy(context.get(), contents.data(),
                                                                          contents.size(), nullptr)))
        return std::nullopt;
    const Handle handle = primaryPicture(context.get());
    const bool hasAlpha = handle && heif_image_handle_has_alpha_channel(handle.get()) != 0;
    const Image image = handle ? decoded(handle.get(), hasAlpha) : nullptr;
    const QImage view = image ? viewOf(image.get(), hasAlpha) : QImage();
    if (view.isNull())
        return std::nullopt;
    return pixelsInSrgb(averagedSquare(view), spaceOf(handle.get(), nclxOf(handle.get(), image.get()).get()));
}

} // namespace vantry
