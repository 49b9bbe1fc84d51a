#include "platform/linux/PictureWorker.h"

#include "base/UniqueFd.h"
#include "base/WriteAll.h"
#include "platform/Sandbox.h"
#include "platform/ShellModule.h"

#include <cstdlib>
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>

namespace vantry {

namespace {

constexpr const char* module = "libombrel-pictures.so";
constexpr std::size_t decodersMemory = std::size_t{768} << 20; // on top of the decoders themselves and the file
constexpr off_t largestPictureFile = off_t{1} << 30;
constexpr rlim_t processorSeconds = 30; // in case the parent is gone and cannot end this

struct OpenPicture {
    UniqueFd file;
    off_t size = 0;
};

// O_NONBLOCK: does not wait for the other end of a FIFO.
std::optional<OpenPicture> openRegularFile(const std::filesystem::path& path) {
    OpenPicture picture{UniqueFd(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC))};
    struct stat facts = {};
    if (!picture.file || fstat(picture.file.get(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_size <= 0)
        return std::nullopt;
    picture.size = facts.st_size;
    return picture;
}

template <class Decoder>
Decoder* decoder(const char* name) {
    const auto symbol = loadModuleSymbol(module, name);
    return symbol ? reinterpret_cast<Decoder*>(*symbol) : nullptr;
}

void limitResources() {
    mallopt(M_ARENA_MAX, 1); // each thread's arena would reserve 64 MB
    std::ignore = limitMemory(decodersMemory);
    const rlimit processor{processorSeconds, processorSeconds};
    setrlimit(RLIMIT_CPU, &processor);
}

std::optional<PicturePixels> decodedFilm(const OpenPicture& film) {
    const auto decode = decoder<FilmDecoder>(filmDecoderName);
    if (!decode)
        return std::nullopt;
    limitResources();
    return decode(film.file.get());
}

std::optional<PicturePixels> decodedPicture(const OpenPicture& picture) {
    if (picture.size > largestPictureFile)
        return std::nullopt;
    const auto decode = decoder<PictureDecoder>(pictureDecoderName);
    const auto size = static_cast<std::size_t>(picture.size);
    // Never unmapped: this process exits soon. If the file is truncated meanwhile, SIGBUS ends it.
    void* contents = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, picture.file.get(), 0);
    if (!decode || contents == MAP_FAILED)
        return std::nullopt;
    limitResources();
    return decode({static_cast<const std::byte*>(contents), size});
}

bool writePixels(const PicturePixels& pixels) {
    static_assert(sizeof(PicturePixel) == 4);
    const auto* bytes = reinterpret_cast<const char*>(pixels.data());
    return writeAll(STDOUT_FILENO, {bytes, pixels.size() * sizeof(PicturePixel)}) == 0;
}

} // namespace

std::optional<int> runPictureWorkerIfRequested(std::span<const std::string> arguments) {
    if (arguments.empty() || arguments[0] != pictureWorkerFlag)
        return std::nullopt;
    if (arguments.size() != 2)
        return EXIT_FAILURE;
    std::ignore = giveUpChangingFiles();
    const auto picture = openRegularFile(arguments[1]);
    if (!picture)
        return EXIT_FAILURE;
    const auto pixels = isFilm(arguments[1]) ? decodedFilm(*picture) : decodedPicture(*picture);
    return pixels && writePixels(*pixels) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace vantry
