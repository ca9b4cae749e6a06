// Feeds arbitrary bytes, as a camera's picture, to all that a picture goes through: the walk over
// its markers, the check, the decoder with the EXIF header, mirror and stamp, and the encoder. The
// last byte says in which size and form.

#include "imaging/JpegMarkers.h"
#include "platform/Files.h"
#include "platform/qt/ExifHeader.h"
#include "platform/qt/JpegDecoder.h"
#include "platform/qt/JpegEncoder.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/fuzz/Require.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/TempFolder.h"

#include <QFontDatabase>
#include <QGuiApplication>

#include <algorithm>

namespace {

using namespace orvane;
using test::finish;
using test::JumpingClock;

constexpr const char* kStamp = "2006:11:15 09:30:00";

/// Anything that may be read as a frame's header and tells of many pixels: allowed, but slow.
bool mayBeLarge(const std::string& bytes) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    for (std::size_t i = 0; i + 8 < bytes.size(); ++i) {
        const unsigned marker = at(i + 1);
        if (at(i) != 0xFF || (marker & 0xF0) != 0xC0) continue;
        if (marker == 0xC4 || marker == 0xC8 || marker == 0xCC) continue; // no frame's
        const unsigned height = at(i + 5) * 256U + at(i + 6);
        const unsigned width = at(i + 7) * 256U + at(i + 8);
        if (height * width > 40'000) return true;
    }
    return false;
}

Fault decode(JpegDecoder& decoder) {
    Fault fault = decoder.begin();
    while (!fault && decoder.more())
        fault = decoder.decodeSlice();
    return fault;
}

std::string encode(const JpegPicture& picture, JpegEncoder::Form form, int quality) {
    JpegEncoder encoder(picture, form, quality);
    Fault fault = encoder.begin();
    while (!fault && encoder.more())
        fault = encoder.encodeSlice();
    require(!fault);
    return encoder.take();
}

void requireMarkers(const std::string& bytes) {
    const bool isWhole = isWholeJpeg(bytes);
    if (isWhole) {
        const auto end = bytes.find("\xFF\xD9");
        const auto start = bytes.find_first_not_of('\xFF'); // fill bytes may precede a marker
        require(start > 0 && start < end && bytes[start] == '\xD8' && end != std::string::npos);
        require(isWholeJpeg(bytes + "behind the end") && !isWholeJpeg(bytes.substr(0, end)));
    }
    if (const auto size = jpegSize(bytes)) require(size->width > 0 && size->height > 0);
}

/// The header of the written picture: upright, with the stamp, and small enough for a segment.
void requireUpright(const std::string& exif) {
    require(exif.starts_with(std::string("Exif\0\0", 6)) && exif.size() <= 65533);
    require(exifOrientation(exif) == 1 && exif.find(kStamp) != std::string::npos);
}

/// What is written is whole, sound, of that size, and can be read again.
void requireSaved(JumpingClock& clock, LibjpegImageControl& control, JpegPicture picture,
                  unsigned choice) {
    const QSize size = picture.pixels.size();
    picture.exif = exifForUpright(picture.exif, kStamp, size.width(), size.height());
    requireUpright(picture.exif);
    const bool isExif = (choice & 1) != 0;
    const auto form = isExif ? JpegEncoder::Form::Exif : JpegEncoder::Form::Jfif444;
    const std::string saved = encode(picture, form, 1 + static_cast<int>(choice % 100));
    require(isWholeJpeg(saved) && !finish(clock, pictureFault(control, saved)));
    JpegDecoder again(saved);
    require(!decode(again));
    const JpegPicture read = again.take();
    require(read.pixels.size() == size && read.comments == picture.comments);
    require(read.colourProfile == picture.colourProfile);
    if (isExif) require(read.exif == picture.exif);
}

/// Rows after rows a sound picture becomes one of the same size.
void requireRewritten(JumpingClock& clock, LibjpegImageControl& control, const std::string& bytes,
                      unsigned choice) {
    static const test::TempFolder& folder = *new test::TempFolder(test::TempFolder::inMemory());
    const auto from = folder.path() / "from.jpg";
    const auto to = folder.path() / "to.jpg";
    require(!writeToFinalName(bytes, from));
    const ImageControl::Rewriting how{
        (choice & 4) != 0, "2006/11/15 09:30",
        (choice & 1) != 0 ? ImageControl::kFormatExif : ImageControl::kFormat444, 24, kStamp};
    std::string written;
    require(!finish(clock, control.rewrite(from, to, how)) && !readWholeFile(to, written));
    JpegDecoder before(bytes);
    JpegDecoder after(written);
    require(!decode(before) && !decode(after) && before.fullSize() == after.fullSize());
}

} // namespace

/// What the system's fonts keep until the program's end.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static auto* const application = new QGuiApplication(*argc, *argv); // outlives all statics
    require(application != nullptr);
    QFontDatabase::addApplicationFont("resources/fonts/DejaVuSans.ttf");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static JumpingClock clock{test::at(2006, 11, 15)};
    static LibjpegImageControl& control = *new LibjpegImageControl(clock);
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size == 0 || mayBeLarge(bytes)) return -1;
    requireMarkers(bytes);
    const unsigned choice = data[size - 1];
    const Fault unsound = finish(clock, pictureFault(control, bytes));
    if (unsound) require(!unsound->empty());

    // what is checked apart from the filing is looked at whether it was sound or not
    const QSize bound = (choice & 2) == 0
                            ? QSize()
                            : QSize(1 + static_cast<int>(choice), 1 + static_cast<int>(size % 20));
    JpegDecoder decoder(bytes, bound);
    if (decode(decoder)) return 0;
    JpegPicture picture = decoder.take();
    require(!picture.pixels.isNull());
    require(picture.pixels.width() <= decoder.fullSize().width() &&
            picture.pixels.height() <= decoder.fullSize().height());
    if (!bound.isValid()) require(picture.pixels.size() == decoder.fullSize());

    require(!finish(clock, control.decode(bytes, bound)));
    control.mirror();
    control.mirror();
    require(control.picture() == picture.pixels);
    control.drawText("2006/11/15 09:30");
    require(control.picture().size() == picture.pixels.size());
    picture.pixels = control.picture();
    control.clear();
    requireRewritten(clock, control, bytes, choice);
    requireSaved(clock, control, std::move(picture), choice);
    return 0;
}
