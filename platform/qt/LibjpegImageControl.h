#pragma once

#include "platform/Clock.h"
#include "platform/ImageControl.h"
#include "platform/qt/JpegPicture.h"

#include <QRect>
#include <QString>

#include <string_view>

namespace orvane {

class JpegDecoder;
class JpegEncoder;

/// The imaging control on libjpeg-turbo, libexif and QPainter. Needs a QGuiApplication.
///
/// Between two slices of half a megapixel it yields to `clock`. Several routines may use one
/// control at a time: `load` puts its picture in place in the moment it ends, and `save` works on
/// the picture it was called for. A task may be destroyed anywhere but must not outlive the
/// control.
class LibjpegImageControl final : public ImageControl {
  public:
    explicit LibjpegImageControl(Clock& clock);
    ~LibjpegImageControl() override;
    LibjpegImageControl(const LibjpegImageControl&) = delete;
    LibjpegImageControl& operator=(const LibjpegImageControl&) = delete;

    Task<Fault> load(std::filesystem::path file) override;
    Task<Fault> loadReduced(std::filesystem::path file, int rows) override;
    Task<Fault> check(const std::string& jpeg) override;
    void mirror() override;
    void drawText(const std::string& text) override;
    void fitInto(int width, int height) override;
    Pixels pixels() const override;
    void take(Pixels pixels) override;
    Task<Fault> save(std::filesystem::path file, std::int16_t format, std::int16_t factor,
                     std::string stamp) override;
    Task<std::string> encode(int quality) override;
    void clear() override { picture_ = {}; }
    /// A few rows after the others, so that no picture as a whole is ever in memory, unless it must
    /// be turned.
    Task<Fault> rewrite(std::filesystem::path from, std::filesystem::path to,
                        Rewriting how) override;

    /// Loads the picture from the bytes of a JPEG file, which outlive the task. With a `bound` it
    /// decodes no more pixels than fitting the picture into it takes (see JpegDecoder).
    Task<Fault> decode(std::string_view jpeg, QSize bound = {});
    /// For showing it; null without a picture.
    QImage picture() const { return picture_.pixels; }

    /// Keeps `part` of the picture only.
    void crop(QRect part) { picture_.pixels = picture_.pixels.copy(part); }
    /// Of the picture as it is stored; `picture` may have been decoded smaller.
    QSize fullSize() const { return fullSize_; }

  private:
    Task<Fault> read(std::filesystem::path file, QSize bound);
    Task<Fault> run(JpegDecoder& decoder);
    Task<Fault> run(JpegEncoder& encoder);
    Task<Fault> rewriteRows(JpegDecoder& decoder, JpegEncoder& encoder, const Rewriting& how);

    Clock& clock_;
    int fontId_;
    QString fontFamily_;
    JpegPicture picture_;
    QSize fullSize_;
};

} // namespace orvane
