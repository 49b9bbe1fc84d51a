#pragma once

#include <cstdint>
#include <memory>
#include <optional>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace vantry {

template <auto Release>
struct ReleasedByAddress {
    template <class Object>
    void operator()(Object* object) const {
        Release(&object);
    }
};

using FilmImage = std::unique_ptr<AVFrame, ReleasedByAddress<av_frame_free>>;

/// A film that is read from a descriptor and from nothing else, whatever it refers to, and its video track.
class FilmFile {
public:
    /// `file` stays the caller's. Absent when it holds no film with a track that can be decoded.
    [[nodiscard]] static std::unique_ptr<FilmFile> open(int file);
    FilmFile(const FilmFile&) = delete;
    FilmFile& operator=(const FilmFile&) = delete;
    ~FilmFile();

    /// The key frame at or before `seconds` from the begin, or the first that can be decoded after it. Null when the
    /// film is shorter or nothing there can be decoded.
    [[nodiscard]] FilmImage frameAt(int seconds);

    /// How the frames are to be turned to be upright: the display matrix, nine numbers; null if not at all.
    [[nodiscard]] const std::int32_t* displayMatrix() const;

private:
    explicit FilmFile(int file) : file_(file) {}
    [[nodiscard]] bool openTrack();
    [[nodiscard]] bool isShorterThan(int seconds) const;
    [[nodiscard]] FilmImage nextFrame();
    static int read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* self, std::int64_t offset, int origin);

    int file_;
    AVIOContext* input_ = nullptr;
    AVFormatContext* format_ = nullptr;
    AVCodecContext* codec_ = nullptr;
    AVStream* track_ = nullptr;
};

} // namespace vantry
