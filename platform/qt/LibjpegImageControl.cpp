#include "platform/qt/LibjpegImageControl.h"

#include "platform/Files.h"
#include "platform/qt/ExifHeader.h"
#include "platform/qt/JpegDecoder.h"
#include "platform/qt/JpegEncoder.h"
#include "platform/qt/MirrorRow.h"
#include "platform/qt/TextStamp.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>

namespace orvane {

namespace {

bool isKnown(std::int16_t format) {
    return format == ImageControl::kFormatExif || format == ImageControl::kFormat444;
}

JpegEncoder::Form formOf(std::int16_t format) {
    return format == ImageControl::kFormatExif ? JpegEncoder::Form::Exif
                                               : JpegEncoder::Form::Jfif444;
}

int qualityOf(std::int16_t factor) {
    return std::clamp(100 - factor, 1, 100);
}

void mirrorRows(QImage& pixels) {
    for (int y = 0; y < pixels.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        mirrorRow(row, row + pixels.width());
    }
}

Fault rewritePixels(JpegDecoder& decoder, JpegEncoder& encoder, const TextStamp& stamp,
                    bool mirror) {
    QImage rows = decoder.rows();
    if (mirror) mirrorRows(rows);
    stamp.draw(rows, decoder.top());
    return encoder.write(rows);
}

Fault rewritePlanes(JpegDecoder& decoder, JpegEncoder& encoder, const TextStamp& stamp,
                    bool mirror) {
    JpegPlanes& planes = decoder.planes();
    if (mirror) planes.mirror();
    stamp.draw(planes, decoder.top());
    return encoder.write(planes);
}

/// Of a picture that is saved upright in that size and form.
void completeExif(JpegPicture& picture, std::int16_t format, const std::string& stamp, QSize size) {
    if (format == ImageControl::kFormatExif)
        picture.exif = exifForUpright(picture.exif, stamp, size.width(), size.height());
}

} // namespace

LibjpegImageControl::LibjpegImageControl(Clock& clock)
    : clock_(clock),
      fontId_(QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/DejaVuSans.ttf"))),
      fontFamily_(QFontDatabase::applicationFontFamilies(fontId_).value(0)) {}

LibjpegImageControl::~LibjpegImageControl() {
    if (qGuiApp != nullptr) QFontDatabase::removeApplicationFont(fontId_);
}

Task<Fault> LibjpegImageControl::load(std::filesystem::path file) {
    return read(std::move(file), {});
}

Task<Fault> LibjpegImageControl::loadReduced(std::filesystem::path file, int rows) {
    constexpr int kAnyWidth = 1 << 20;
    return read(std::move(file), {kAnyWidth, rows});
}

Task<Fault> LibjpegImageControl::read(std::filesystem::path file, QSize bound) {
    clear();
    std::string bytes;
    if (auto reason = readWholeFile(file, bytes)) co_return reason;
    Task<Fault> decoding = decode(bytes, bound);
    Fault fault = co_await decoding;
    co_return fault;
}

Task<Fault> LibjpegImageControl::decode(std::string_view jpeg, QSize bound) {
    clear();
    JpegDecoder decoder(jpeg, bound);
    Task<Fault> running = run(decoder);
    Fault fault = co_await running;
    if (fault) co_return fault;
    picture_ = decoder.take();
    fullSize_ = decoder.fullSize();
    co_return fault;
}

Task<Fault> LibjpegImageControl::check(const std::string& jpeg) {
    JpegDecoder decoder(jpeg, {}, JpegDecoder::Purpose::Check);
    Task<Fault> running = run(decoder);
    Fault fault = co_await running;
    co_return fault;
}

/// From the header to the last row.
Task<Fault> LibjpegImageControl::run(JpegDecoder& decoder) {
    Fault fault = decoder.begin();
    while (!fault && decoder.more()) {
        fault = decoder.decodeSlice();
        if (!fault) co_await clock_.yield();
    }
    co_return fault;
}

void LibjpegImageControl::mirror() {
    mirrorRows(picture_.pixels);
}

void LibjpegImageControl::drawText(const std::string& text) {
    if (picture_.pixels.isNull()) return;
    TextStamp(picture_.pixels.size(), QString::fromStdString(text), fontFamily_)
        .draw(picture_.pixels);
}

void LibjpegImageControl::fitInto(int width, int height) {
    const QImage& pixels = picture_.pixels;
    const QSize frame(width, height);
    if (pixels.isNull() || pixels.size() == frame) return;
    const QSize fitted =
        pixels.size().scaled(frame, Qt::KeepAspectRatio).expandedTo({1, 1}).boundedTo(frame);
    QImage whole(frame, QImage::Format_RGB32);
    whole.fill(Qt::black);
    QPainter painter(&whole);
    painter.drawImage(QPoint((width - fitted.width()) / 2, (height - fitted.height()) / 2),
                      pixels.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.end();
    picture_.pixels = whole;
}

Pixels LibjpegImageControl::pixels() const {
    const QImage& from = picture_.pixels;
    Pixels to{from.width(), from.height()};
    to.data.reserve(static_cast<std::size_t>(to.width) * static_cast<std::size_t>(to.height));
    for (int y = 0; y < to.height; ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(from.constScanLine(y));
        to.data.insert(to.data.end(), row, row + to.width);
    }
    return to;
}

void LibjpegImageControl::take(Pixels pixels) {
    picture_ = {};
    const auto* data = reinterpret_cast<const uchar*>(pixels.data.data());
    picture_.pixels =
        QImage(data, pixels.width, pixels.height, pixels.width * 4, QImage::Format_RGB32).copy();
    fullSize_ = picture_.pixels.size();
}

Task<Fault> LibjpegImageControl::save(std::filesystem::path file, std::int16_t format,
                                      std::int16_t factor, std::string stamp) {
    if (picture_.pixels.isNull()) co_return "No picture to save";
    if (!isKnown(format)) co_return "Unknown picture format " + std::to_string(format);
    JpegPicture picture = picture_;
    completeExif(picture, format, stamp, picture.pixels.size());
    JpegEncoder encoder(std::move(picture), formOf(format), qualityOf(factor));
    Task<Fault> encoding = run(encoder);
    Fault fault = co_await encoding;
    co_return fault ? fault : writeToFinalName(encoder.take(), file);
}

Task<std::string> LibjpegImageControl::encode(int quality) {
    if (picture_.pixels.isNull()) co_return std::string();
    JpegEncoder encoder({picture_.pixels, {}, {}, {}}, JpegEncoder::Form::Jfif444, quality);
    Task<Fault> encoding = run(encoder);
    const Fault fault = co_await encoding;
    co_return fault ? std::string() : encoder.take();
}

Task<Fault> LibjpegImageControl::run(JpegEncoder& encoder) {
    Fault fault = encoder.begin();
    while (!fault && encoder.more()) {
        co_await clock_.yield(); // first: mirroring and drawing have just had a slice
        fault = encoder.encodeSlice();
    }
    co_return fault;
}

Task<Fault> LibjpegImageControl::rewrite(std::filesystem::path from, std::filesystem::path to,
                                         Rewriting how) {
    clear();
    std::string bytes;
    if (auto reason = readWholeFile(from, bytes)) co_return reason;
    const auto rows =
        how.format == kFormatExif ? JpegDecoder::Purpose::RowsOrPlanes : JpegDecoder::Purpose::Rows;
    JpegDecoder decoder(bytes, {}, rows);
    Fault fault = decoder.begin();
    if (fault) co_return fault;
    if (!decoder.isUpright() || !isKnown(how.format)) {
        Task<Fault> whole = ImageControl::rewrite(from, to, how);
        fault = co_await whole;
        co_return fault;
    }
    JpegPicture header = decoder.header();
    completeExif(header, how.format, how.stamp, decoder.fullSize());
    JpegEncoder encoder(std::move(header), formOf(how.format), qualityOf(how.factor),
                        decoder.fullSize(), decoder.isPlanar());
    Task<Fault> rewriting = rewriteRows(decoder, encoder, how);
    fault = co_await rewriting;
    if (!fault) fault = makeFolder(to.parent_path());
    co_return fault ? fault : writeToFinalName(encoder.take(), to);
}

Task<Fault> LibjpegImageControl::rewriteRows(JpegDecoder& decoder, JpegEncoder& encoder,
                                             const Rewriting& how) {
    const TextStamp stamp(decoder.fullSize(), QString::fromStdString(how.text), fontFamily_);
    Fault fault = encoder.begin();
    while (!fault && decoder.more()) {
        fault = decoder.decodeSlice();
        if (fault) break;
        fault = decoder.isPlanar() ? rewritePlanes(decoder, encoder, stamp, how.mirror)
                                   : rewritePixels(decoder, encoder, stamp, how.mirror);
        co_await clock_.yield();
    }
    co_return fault;
}

} // namespace orvane
