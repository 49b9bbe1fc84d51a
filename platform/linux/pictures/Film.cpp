#include "platform/linux/pictures/Decoders.h"

#include <QTransform>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libswscale/swscale.h>
}

namespace vantry {

namespace {

constexpr int bufferSize = 1 << 16;
constexpr std::int64_t mostPixels = std::int64_t{8192} * 8192;
constexpr int mostPackets = 2000; // of all tracks, on the way to a frame

template <auto Release>
struct ReleasedByAddress {
    template <class Object>
    void operator()(Object* object) const {
        Release(&object);
    }
};

using FilmImage = std::unique_ptr<AVFrame, ReleasedByAddress<av_frame_free>>;
using Packet = std::unique_ptr<AVPacket, ReleasedByAddress<av_packet_free>>;

struct FreeScaler {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

// A film may refer to other files. They are not opened.
int openNothing(AVFormatContext* /*format*/, AVIOContext** /*input*/, const char* /*url*/, int /*flags*/,
                AVDictionary** /*options*/) {
    return AVERROR(EPERM);
}

// A film that is read from a descriptor and from no other file, and its video track.
class FilmFile {
public:
    // `file` stays the caller's. Null when it holds no film with a track that can be decoded.
    [[nodiscard]] static std::unique_ptr<FilmFile> open(int file);
    FilmFile(const FilmFile&) = delete;
    FilmFile& operator=(const FilmFile&) = delete;
    ~FilmFile();

    // The key frame at or before `seconds`, or the first one after it that can be decoded. Null when the film is
    // shorter or nothing there can be decoded.
    [[nodiscard]] FilmImage frameAt(int seconds);

    // The display matrix, nine numbers that say how to turn the frames upright; null if they are upright.
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
    // Only this format: others, such as playlists, can name other files.
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
    // Without an index seeking fails, but the first frame is where the film was opened.
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

// What a frame does not say is what was usual for films of its size.
const int* coefficientsOf(const AVFrame& frame) {
    constexpr int heightOfHighDefinition = 720;
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED)
        return sws_getCoefficients(frame.colorspace);
    return sws_getCoefficients(frame.height < heightOfHighDefinition ? SWS_CS_ITU601 : SWS_CS_ITU709);
}

QImage squareOf(const AVFrame& frame) {
    const std::unique_ptr<SwsContext, FreeScaler> scaler(sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), squareSide, squareSide, AV_PIX_FMT_RGBA,
        SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP, nullptr, nullptr, nullptr));
    const FilmImage scaled(av_frame_alloc());
    if (!scaler || !scaled)
        return {};
    constexpr int fullScale = 1 << 16; // of contrast and saturation
    const bool isFullRange = frame.color_range == AVCOL_RANGE_JPEG;
    // Fails for frames in RGB, which do not need it.
    sws_setColorspaceDetails(scaler.get(), coefficientsOf(frame), isFullRange ? 1 : 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, fullScale, fullScale);
    scaled->width = scaled->height = squareSide;
    scaled->format = AV_PIX_FMT_RGBA;
    if (av_frame_get_buffer(scaled.get(), 0) < 0 ||
        sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, scaled->data, scaled->linesize) <= 0)
        return {};
    return QImage(scaled->data[0], squareSide, squareSide, scaled->linesize[0], QImage::Format_RGBA8888).copy();
}

// Only quarter turns and mirroring keep a square what it is; anything else is ignored.
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
    for (const int time : {75, 10, 0}) {
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
