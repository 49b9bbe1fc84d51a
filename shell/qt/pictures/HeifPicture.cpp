#include "shell/qt/pictures/HeifPicture.h"

#include "shell/qt/pictures/AreaAverage.h"
#include "shell/qt/pictures/HeifRows.h"
#include "shell/qt/pictures/PictureColors.h"

#include <QByteArray>
#include <QColorSpace>
#include <algorithm>
#include <libheif/heif.h>
#include <memory>
#include <vector>

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

// As it is stored: a conversion would take more memory than a large picture leaves.
Image decoded(const heif_image_handle* handle) {
    heif_image* image = nullptr;
    return Image(succeeded(heif_decode_image(handle, &image, heif_colorspace_undefined, heif_chroma_undefined, nullptr))
                     ? image
                     : nullptr);
}

// That of the file counts more than that of the coded picture.
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

bool isHeif(std::span<const std::byte> contents) {
    constexpr std::size_t enough = 4096; // the file type box with all its brands
    const auto filetype = heif_check_filetype(reinterpret_cast<const std::uint8_t*>(contents.data()),
                                              static_cast<int>(std::min(contents.size(), enough)));
    return filetype == heif_filetype_yes_supported || filetype == heif_filetype_maybe;
}

std::optional<PicturePixels> decodeHeif(std::span<const std::byte> contents) {
    const Context context(heif_context_alloc());
    if (!context || !succeeded(heif_context_read_from_memory_without_copy(context.get(), contents.data(),
                                                                          contents.size(), nullptr)))
        return std::nullopt;
    const Handle handle = primaryPicture(context.get());
    const Image image = handle ? decoded(handle.get()) : nullptr;
    if (!image)
        return std::nullopt;
    const Nclx nclx = nclxOf(handle.get(), image.get());
    const auto matrix =
        nclx ? YCbCrMatrix::named(nclx->matrix_coefficients, nclx->full_range_flag != 0) : YCbCrMatrix();
    const auto rows = HeifRows::of(image.get(), matrix);
    if (!rows)
        return std::nullopt;
    AreaAverage average(rows->width(), rows->height());
    std::vector<std::uint8_t> row(static_cast<std::size_t>(rows->width()) * 4);
    for (int y = 0; y < rows->height(); ++y) {
        rows->read(y, row);
        average.addRow(row);
    }
    return pixelsInSrgb(average.square(), spaceOf(handle.get(), nclx.get()));
}

} // namespace vantry
