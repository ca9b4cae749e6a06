#include "ui/pictures/PictureLoader.h"

#include "imaging/ProcessImageFile.h"
#include "platform/Files.h"

#include <fstream>
#include <system_error>

namespace orvane {
namespace {

// Short beside a slice of decoding; a queue would have to forget those that are destroyed.
constexpr auto kTurnPoll = 5ms;
// Twice what a transfer may bring: a file of any other origin must not fill the memory.
constexpr qsizetype kMaxBytes = 256 * 1024 * 1024;
constexpr qsizetype kReadSlice = 4 * 1024 * 1024;
const std::string kNotOpened = "This file cannot be opened";
const std::string kNoPicture = "This is not a JPEG picture that can be shown";

std::string sentence(const std::string& text, const std::string& reason) {
    return text + ": " + reason + ".";
}

/// Why `file` must not even be opened, or "": opening a pipe would wait for its other end.
std::string refusal(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (error) return sentence(kNotOpened, error.message());
    if (!std::filesystem::is_regular_file(status)) return sentence(kNotOpened, "It is not a file");
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error) return sentence(kNotOpened, error.message());
    if (size > static_cast<std::uintmax_t>(kMaxBytes))
        return sentence(kNoPicture, "The file is too large");
    return {};
}

std::string_view bytesOf(const QByteArray& jpeg) {
    return {jpeg.data(), static_cast<std::size_t>(jpeg.size())};
}

QImage fittedInto(const QImage& picture, QSize bound) {
    const QSize size = picture.size();
    if (!bound.isValid() || size.boundedTo(bound) == size) return picture;
    return picture.scaled(size.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)),
                          Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

Scope PictureLoader::takeTurn() {
    return Scope([this](bool taken) {
        taken_ = taken;
        if (!taken) control_.clear();
    });
}

/// Gives `source` its bytes, unless it has them already.
Task<std::string> PictureLoader::read(PictureSource& source) {
    if (!source.jpeg.isNull()) co_return std::string();
    std::string fault = refusal(source.file);
    if (!fault.empty()) co_return fault;
    std::ifstream stream(source.file, std::ios::binary);
    if (!stream) co_return sentence(kNotOpened, "It cannot be read");
    QByteArray bytes;
    while (stream) {
        const qsizetype done = bytes.size();
        bytes.resize(done + kReadSlice);
        stream.read(bytes.data() + done, kReadSlice);
        bytes.resize(done + stream.gcount());
        // Looked at with the first slice: a large file of another kind is not read to its end.
        if (!bytes.startsWith("\xFF\xD8"))
            co_return sentence(kNoPicture, bytes.isEmpty() ? "It is empty" : "It is no JPEG file");
        if (bytes.size() > kMaxBytes) co_return sentence(kNoPicture, "The file is too large");
        if (stream) co_await clock_.yield();
    }
    if (stream.bad()) co_return sentence(kNotOpened, "It cannot be read");
    bytes.squeeze();
    source.jpeg = std::move(bytes);
    co_return fault;
}

/// Leaves the processed picture, or its part, in `control_`.
Task<std::string> PictureLoader::decode(PictureSource source, QSize bound) {
    ++decodeCount_;
    // A part is cut out of the whole picture: in a smaller one its edges would not be the same.
    Task<Fault> decoding =
        control_.decode(bytesOf(source.jpeg), source.part.isNull() ? bound : QSize());
    const Fault fault = co_await decoding;
    if (fault) co_return sentence(kNoPicture, *fault);
    applyOptions(control_, source.processing, source.file);
    if (!source.part.isNull()) {
        co_await clock_.yield();
        control_.crop(source.part & QRect({}, control_.fullSize()));
    }
    if (control_.picture().isNull()) co_return sentence(kNoPicture, "It has no such part");
    co_return std::string();
}

Task<LoadedPicture> PictureLoader::load(PictureSource source, QSize bound) {
    LoadedPicture loaded;
    Task<std::string> reading = read(source);
    loaded.fault = co_await reading;
    if (!loaded.fault.empty()) co_return loaded;
    while (taken_)
        co_await clock_.sleep(kTurnPoll);
    const Scope turn = takeTurn();
    loaded.jpeg = source.jpeg;
    Task<std::string> decoding = decode(source, bound);
    loaded.fault = co_await decoding;
    if (loaded.fault.empty()) {
        co_await clock_.yield();
        loaded.size = source.part.isNull() ? control_.fullSize() : control_.picture().size();
        loaded.pixels = fittedInto(control_.picture(), bound);
    }
    co_return loaded;
}

Task<std::string> PictureLoader::save(PictureSource source, std::filesystem::path target,
                                      ImageOptions form) {
    Task<std::string> reading = read(source);
    std::string fault = co_await reading;
    if (!fault.empty()) co_return fault;
    // Byte for byte, so nothing is lost by saving; and without a turn, since nothing is decoded.
    if (!source.isAltered()) co_return writeToFinalName(bytesOf(source.jpeg), target).value_or("");
    while (taken_)
        co_await clock_.sleep(kTurnPoll);
    const Scope turn = takeTurn();
    Task<std::string> decoding = decode(source, {});
    fault = co_await decoding;
    if (fault.empty()) {
        Task<Fault> saving =
            control_.save(target, form.JpegTyp, form.Quality, exifStampOf(source.file));
        const Fault unsaved = co_await saving;
        fault = unsaved.value_or("");
    }
    co_return fault;
}

Task<std::string> PictureLoader::writeProcessedCopy(std::filesystem::path image,
                                                    ImageOptions options, bool processingOn) {
    while (taken_)
        co_await clock_.sleep(kTurnPoll);
    const Scope turn = takeTurn();
    Task<Fault> processing = ProcessImageFile(control_, image, options, processingOn);
    const Fault fault = co_await processing;
    co_return fault.value_or("");
}

} // namespace orvane
