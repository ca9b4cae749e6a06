#pragma once

#include "platform/Fault.h"
#include "platform/qt/ExifHeader.h"
#include "platform/qt/JpegErrors.h"
#include "platform/qt/JpegPicture.h"
#include "platform/qt/JpegPlanes.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orvane {

/// Decodes one JPEG held in memory: `begin`, then `decodeSlice` while there is `more`, then `take`.
/// May be destroyed at any point. After a fault it is used up.
class JpegDecoder {
  public:
    enum class Purpose {
        Picture,      ///< its pixels and markers; what cannot be shown in colour is refused
        Rows,         ///< the same, but only the rows of the last slice are kept: see `rows`
        RowsOrPlanes, ///< the same, by `planes` where the file is a plain one in 4:2:0
        Check,        ///< whether the data are sound and whole, of any kind; no pixel is kept
    };

    /// `jpeg` outlives the decoder. With a `bound`, in pixels of the upright picture, the picture
    /// is decoded in the smallest eighth of its size from which it can still be fitted into `bound`
    /// without enlarging it. A check is made at an eighth of the size.
    explicit JpegDecoder(std::string_view jpeg, QSize bound = {},
                         Purpose purpose = Purpose::Picture);
    ~JpegDecoder();
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    /// Reads the header and refuses what will not be decoded: more than 100 megapixels, and CMYK
    /// unless it is only checked.
    Fault begin();
    bool more() const { return stage_ != Stage::Done; }
    Fault decodeSlice();
    JpegPicture take() { return std::move(picture_); }

    /// Whether its rows run from left to right and come from the top; after `begin`.
    bool isUpright() const { return exifOrientation(picture_.exif) == 1; }
    /// The first row of `rows` or `planes` in the picture.
    int top() const { return static_cast<int>(top_); }
    /// For `Purpose::Rows` and an upright picture: those that the last slice brought, to be changed
    /// at will until the next one. There are none while the scans are read.
    QImage rows();
    /// Whether a slice brings `planes`, not `rows`; after `begin`.
    bool isPlanar() const { return planes_.width() != 0; }
    /// What the last slice brought, as `rows` does.
    JpegPlanes& planes() { return planes_; }
    /// What the file carried besides the pixels.
    JpegPicture header() const;
    /// Of the whole picture, upright; after `begin`.
    QSize fullSize() const { return fullSize_; }

  private:
    /// Files with several scans are read to their end before the first row comes out. A check ends
    /// there: their rows would tell nothing new.
    enum class Stage { Scans, Rows, Done };

    // Calls into the library: each sets the escape point and has only trivial locals.
    bool readHeader();
    bool readProfile(JOCTET** profile, unsigned* size);
    bool scale();
    bool start();
    bool readScans();
    bool readRows();
    bool readBands();
    void endRows(); // for the two above, within theirs

    Fault refusal() const;
    bool isComplete() const;
    void keepMarkers();
    void chooseEighths();
    bool keepsRows() const;
    bool isPlain420();
    bool allocate(int orientation);
    void scatter(const std::uint32_t* row);

    std::string_view jpeg_;
    QSize bound_;
    Purpose purpose_;
    QSize fullSize_;
    JpegErrors errors_;
    jpeg_decompress_struct info_{};
    Stage stage_ = Stage::Rows;
    JpegPicture picture_;
    JpegPlanes planes_;
    unsigned top_ = 0; ///< the picture's row that stands first in the pixels

    // Where source pixel (x, y) goes: origin_ + x * xStep_ + y * yStep_. Turning the picture
    // upright costs no pass of its own.
    std::uint32_t* origin_ = nullptr;
    std::ptrdiff_t xStep_ = 1;
    std::ptrdiff_t yStep_ = 0;
    std::vector<std::uint32_t> row_; ///< used unless the rows are decoded in place
};

} // namespace orvane
