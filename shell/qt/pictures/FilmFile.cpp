#include "shell/qt/pictures/FilmFile.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavutil/display.h>
}

namespace vantry {

namespace {

constexpr int bufferSize = 1 << 16;
constexpr std::int64_t mostPixels = std::int64_t{8192} * 8192;
constexpr int mostPackets = 2000; // of all tracks, on the way to a frame

using Packet = std::unique_ptr<AVPacket, ReleasedByAddress<av_packet_free>>;

// What a film refers to is not looked at.
int openNothing(AVFormatContext* /*format*/, AVIOContext** /*input*/, const char* /*url*/, int /*flags*/,
                AVDictionary** /*options*/) {
    return AVERROR(EPERM);
}

} // namespace

int FilmFile::read(void* self, std::uint8_t* buffer, int size) {
    const ssize_t length = ::read(static_cast<FilmFile*>(self)->file_, buffer, static_cast<std::size_t>(size));
    if (length < 0)
        return AVERROR(errno);
    return length == 0 ? AVERROR_EOF : static_cast<int>(length);
}

std::int64_t FilmFile::seek(void* self, std::int64_t offset, int origin) {
    const int file = static_cast<FilmFile*>(self)->file_;
    struct stat facts = {};
    if (origin & AVSEEK_SIZE)
        return fstat(file, &facts) == 0 ? facts.st_size : AVERROR(errno);
    const off_t position = lseek(file, offset, origin & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : position;
}

std::unique_ptr<FilmFile> FilmFile::open(int file) {
    av_log_set_level(AV_LOG_QUIET);
    std::unique_ptr<FilmFile> film(new FilmFile(file));
    auto* buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    film->input_ = avio_alloc_context(buffer, bufferSize, 0, film.get(), read, nullptr, seek);
    film->format_ = avformat_alloc_context();
    if (!film->input_ || !film->format_)
        return nullptr;
    film->format_->pb = film->input_;
    film->format_->io_open = openNothing;
    // Named, so that contents that call for another format, which may lead to other files, are refused.
    const AVInputFormat* const quickTime = av_find_input_format("mov");
    if (!quickTime || avformat_open_input(&film->format_, "", quickTime, nullptr) != 0) // frees it when it fails
        return nullptr;
    return film->openTrack() ? std::move(film) : nullptr;
}

FilmFile::~FilmFile() {
    avcodec_free_context(&codec_);
    avformat_close_input(&format_);
    if (input_)
        av_freep(static_cast<void*>(&input_->buffer));
    avio_context_free(&input_);
}

bool FilmFile::openTrack() {
    if (avformat_find_stream_info(format_, nullptr) < 0)
        return false;
    const AVCodec* decoder = nullptr;
    const int index = av_find_best_stream(format_, AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (index < 0 || !decoder)
        return false;
    for (unsigned i = 0; i < format_->nb_streams; ++i)
        if (static_cast<int>(i) != index)
            format_->streams[i]->discard = AVDISCARD_ALL;
    track_ = format_->streams[index];
    codec_ = avcodec_alloc_context3(decoder);
    if (!codec_ || avcodec_parameters_to_context(codec_, track_->codecpar) < 0)
        return false;
    codec_->thread_count = 1;
    codec_->max_pixels = mostPixels;
    return avcodec_open2(codec_, decoder, nullptr) == 0;
}

bool FilmFile::isShorterThan(int seconds) const {
    if (track_->duration != AV_NOPTS_VALUE && track_->duration > 0)
        return av_compare_ts(track_->duration, track_->time_base, seconds, {1, 1}) <= 0;
    return format_->duration != AV_NOPTS_VALUE && format_->duration <= std::int64_t{seconds} * AV_TIME_BASE;
}

FilmImage FilmFile::frameAt(int seconds) {
    if (seconds > 0 && isShorterThan(seconds))
        return nullptr;
    const std::int64_t begin = track_->start_time == AV_NOPTS_VALUE ? 0 : track_->start_time;
    const std::int64_t time = begin + av_rescale_q(seconds, {1, 1}, track_->time_base);
    // A film that nothing can be sought in may still have its first frame where it was opened.
    if (av_seek_frame(format_, track_->index, time, AVSEEK_FLAG_BACKWARD) < 0 && seconds > 0)
        return nullptr;
    avcodec_flush_buffers(codec_);
    return nextFrame();
}

FilmImage FilmFile::nextFrame() {
    const Packet packet(av_packet_alloc());
    FilmImage frame(av_frame_alloc());
    if (!packet || !frame)
        return nullptr;
    bool ended = false;
    for (int packets = 0; packets < mostPackets; ++packets) {
        ended = ended || av_read_frame(format_, packet.get()) < 0;
        if (ended || packet->stream_index == track_->index) {
            const int sent = avcodec_send_packet(codec_, ended ? nullptr : packet.get());
            const int received = avcodec_receive_frame(codec_, frame.get());
            if (received == 0)
                return frame;
            if (ended && (sent < 0 || received != AVERROR(EAGAIN)))
                return nullptr;
        }
        av_packet_unref(packet.get());
    }
    return nullptr;
}

const std::int32_t* FilmFile::displayMatrix() const {
    constexpr std::size_t size = 9 * sizeof(std::int32_t);
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 100)
    const auto* parameters = track_->codecpar;
    const AVPacketSideData* data =
        av_packet_side_data_get(parameters->coded_side_data, parameters->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    return data && data->size >= size ? reinterpret_cast<const std::int32_t*>(data->data) : nullptr;
#else
    std::size_t length = 0;
    const std::uint8_t* data = av_stream_get_side_data(track_, AV_PKT_DATA_DISPLAYMATRIX, &length);
    return data && length >= size ? reinterpret_cast<const std::int32_t*>(data) : nullptr;
#endif
}

} // namespace vantry
