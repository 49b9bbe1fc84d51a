// Files that are not pictures, or are made to harm their reader.

#include "tests/platform/linux/MadePictures.h"
#include "tests/platform/linux/PictureFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TestSystem.h"

#include <QBuffer>

#include <chrono>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>

namespace vantry {

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// Enough for the worst of these files on a busy machine. Without limits they would take minutes.
constexpr auto quickly = 15s;

class HostilePicture : public PictureFixture {
protected:
    static void expectNone(const fs::path& file) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_FALSE(read(file)) << file;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, quickly) << file;
        EXPECT_FALSE(hasChildren()) << file;
    }
};

std::string encoded(const QImage& image, const char* format, int quality = -1) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format, quality))
        throw std::runtime_error(std::string("cannot write ") + format);
    return bytes.toStdString();
}

std::string bigEndian(std::uint32_t value, unsigned bytes) {
    std::string text;
    for (unsigned i = bytes; i > 0; --i)
        text += static_cast<char>(value >> (8 * (i - 1)) & 0xffU);
    return text;
}

std::uint32_t checksum(std::string_view bytes) {
    std::uint32_t crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1U ^ ((crc & 1U) != 0 ? 0xedb88320U : 0U);
    }
    return ~crc;
}

std::string pngThatClaims(std::uint32_t width, std::uint32_t height) {
    std::string png = encoded(quarteredPicture(), "png");
    constexpr std::size_t header = 12; // begins with its name, which the checksum covers
    png.replace(header + 4, 8, bigEndian(width, 4) + bigEndian(height, 4));
    png.replace(header + 17, 4, bigEndian(checksum(png.substr(header, 17)), 4));
    return png;
}

std::string jpegThatClaims(std::uint32_t width, std::uint32_t height) {
    std::string jpeg = encoded(quarteredPicture(), "jpeg");
    const auto frame = jpeg.find("\xff\xc0");
    return jpeg.replace(frame + 5, 4, bigEndian(height, 2) + bigEndian(width, 2));
}

std::string gifThatClaims(unsigned width, unsigned height) {
    std::string gif = gifOf({quarteredPicture()});
    const std::string size = littleEndian(width) + littleEndian(height);
    gif.replace(6, 4, size);
    return gif.replace(gif.find(',', 13 + 768) + 5, 4, size);
}

} // namespace

TEST_F(HostilePicture, ThatIsCutOffIsNotRead) {
    const QImage image = quarteredPicture();
    std::vector<std::pair<std::string, std::string>> whole{
        {"a.png", encoded(image, "png")},
        {"a.tif", encoded(image, "tiff")},
        {"a.webp", encoded(image, "webp", 100)},
        {"b.webp", encoded(image, "webp")},
        {"a.jxl", jxlOf(image)},
        {"b.jxl", jxlOf(image, {.isLossless = false})},
    };
    if (canEncodeHeic()) {
        writeHeic(image, root / "whole.heic");
        whole.emplace_back("a.heic", readFile(root / "whole.heic"));
    }
    for (const auto& [name, contents] : whole) {
        EXPECT_TRUE(read(save(contents, name))) << name;
        for (const double part : {0.0, 0.001, 0.1, 0.5, 0.9, 0.99})
            expectNone(
                save(contents.substr(0, static_cast<std::size_t>(part * static_cast<double>(contents.size()))), name));
    }
}

TEST_F(HostilePicture, InJpegOrGifMayBeCutOff) {
    for (const auto& contents : {encoded(quarteredPicture(), "jpeg"), gifOf({quarteredPicture()})}) {
        expectNone(save(contents.substr(0, 10), "a"));
        for (const auto part : {2U, 10U, 100U})
            std::ignore = read(save(contents.substr(0, contents.size() / part), "a"));
        EXPECT_TRUE(read(save(contents.substr(0, contents.size() - 1), "a")));
    }
}

TEST_F(HostilePicture, WithExtraBytesBehindItsEndIsRead) {
    for (const char* format : {"png", "jpeg"})
        EXPECT_TRUE(read(save(encoded(quarteredPicture(), format) + std::string(5000, 'x'), "a"))) << format;
    const std::string gif = gifOf({quarteredPicture(), quarteredPicture()});
    EXPECT_TRUE(read(save(gif.substr(0, gif.size() * 3 / 4), "a.gif"))) << "the first frame is there";
}

TEST_F(HostilePicture, ThatIsNotAPictureIsNotRead) {
    for (const char* extension :
         {"gif", "heic", "heif", "jpeg", "jpg", "jxl", "m4v", "mov", "mp4", "png", "tif", "tiff", "webp"}) {
        const std::string name = std::string("a.") + extension;
        expectNone(save("This is a text and no picture.\n", name));
        expectNone(save("", name));
        expectNone(save(std::string(1 << 16, '\0'), name));
    }
    expectNone(save("BM" + std::string(2000, '\1'), "a.png"));
    expectNone(save("#define a_width 8\n#define a_height 1\nstatic char a_bits[] = { 0x55 };\n", "a.png"));
}

TEST_F(HostilePicture, OfTenGigabytesIsNotRead) {
    for (const char* name : {"a.png", "a.jpg", "a.heic", "a.mp4", "a.mov"}) {
        writeFile(root / name, std::string_view(name).ends_with("g") ? encoded(quarteredPicture(), "png") : "");
        fs::resize_file(root / name, std::uintmax_t{10} << 30U);
        expectNone(root / name);
        fs::remove(root / name);
    }
}

TEST_F(HostilePicture, ThatIsNotARegularFileIsNotRead) {
    for (const char* name : {"fifo.png", "fifo.mov"}) {
        ASSERT_EQ(mkfifo((root / name).c_str(), 0600), 0);
        expectNone(root / name);
    }
    for (const char* name : {"folder.jpg", "folder.mp4"}) {
        fs::create_directory(root / name);
        expectNone(root / name);
    }
    for (const char* name : {"zero.png", "zero.mp4"}) {
        fs::create_symlink("/dev/zero", root / name);
        expectNone(root / name);
    }
    fs::create_symlink("circle.png", root / "circle.png");
    for (const fs::path& file : {root / "circle.png", root / "missing.png", root / "missing.mov", fs::path()})
        expectNone(file);
}

TEST_F(HostilePicture, ThatClaimsToBeVastIsNotRead) {
    expectNone(save(pngThatClaims(60'000, 60'000), "a.png"));
    expectNone(save(pngThatClaims(2'000'000'000, 1), "b.png"));
    expectNone(save(pngThatClaims(0, 0), "c.png"));
    expectNone(save(gifThatClaims(65'535, 65'535), "a.gif"));
    EXPECT_TRUE(read(save(jpegThatClaims(65'500, 65'500), "a.jpg"))) << "its decoder needs no such memory";
    EXPECT_TRUE(read(save(pngThatClaims(400, 300), "a.png"))) << "the claims are made well";
    EXPECT_TRUE(read(save(jpegThatClaims(400, 300), "a.jpg")));
    EXPECT_TRUE(read(save(gifThatClaims(400, 300), "a.gif")));
}

TEST_F(HostilePicture, WithoutPermissionIsNotRead) {
    const auto file = save(quarteredPicture(), "a.png");
    fs::permissions(root.path(), fs::perms::owner_all | fs::perms::others_all);
    const auto asAnother = [&file](fs::perms permissions) {
        fs::permissions(file, permissions);
        return inChildProcess([&file]() -> std::string {
            if (!becomeUser(unknownUser()))
                return "no user";
            return readPictureInWorker(OMBREL_EXECUTABLE, file, 60s) ? "read" : "none";
        });
    };
    if (geteuid() != 0 || asAnother(fs::perms::owner_all | fs::perms::others_read) != "read")
        GTEST_SKIP() << "no right to become another user, or none of theirs to the executable";
    EXPECT_EQ(asAnother(fs::perms::owner_all), "none");
}

} // namespace vantry
