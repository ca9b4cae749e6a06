#pragma once

#include "imaging/ImageOptions.h"
#include "platform/qt/LibjpegImageControl.h"
#include "station/Scope.h"

#include <QByteArray>
#include <QImage>
#include <QRect>

#include <filesystem>
#include <string>

namespace orvane {

/// Where a picture comes from and what is done with it; holds no pixels.
struct PictureSource {
    std::filesystem::path file{}; ///< names it; empty for a picture never filed
    QByteArray jpeg{};            ///< its bytes; null: those of `file`
    ImageOptions processing{};    ///< mirrored and stamped so; as it is filed by default
    QRect part{};                 ///< of the upright, processed picture; null: all

    /// Whether what is shown differs from the JPEG's own bytes.
    bool isAltered() const { return isSet(processing.LrFlg) || !part.isNull(); }
};

struct LoadedPicture {
    QImage pixels; ///< null when it failed
    QSize size;    ///< of the picture; `pixels` may have less
    QByteArray jpeg;
    std::string fault; ///< a sentence for the operator
};

/// Decodes and saves the pictures of all windows, one at a time, so that no more than one picture
/// is ever held whole for it, and in slices, so that the windows stay alive. Whoever awaits its
/// tasks may destroy them at any point; it must outlive them. Nobody else uses its `control`. Whose
/// turn is next is a matter of chance among those that wait: none of them is more urgent.
class PictureLoader {
  public:
    PictureLoader(Clock& clock, LibjpegImageControl& control) : clock_(clock), control_(control) {}

    /// The picture no larger than `bound`, or whole without one.
    Task<LoadedPicture> load(PictureSource source, QSize bound);
    /// Writes the picture to `target`, which is replaced: as a copy of the JPEG's bytes where that
    /// is what is shown, else encoded as `form` says. Returns the reason of a failure, or "".
    Task<std::string> save(PictureSource source, std::filesystem::path target, ImageOptions form);
    /// Writes the processed copy of a dated folder's picture. Returns as `save` does.
    Task<std::string> writeProcessedCopy(std::filesystem::path image, ImageOptions options,
                                         bool processingOn);

    /// How many pictures were decoded so far, to see that none is decoded in vain.
    int decodeCount() const { return decodeCount_; }

  private:
    /// Keeps `control_` for one task and empties it afterwards, also when the task is destroyed.
    Scope takeTurn();
    Task<std::string> read(PictureSource& source);
    Task<std::string> decode(PictureSource source, QSize bound);

    Clock& clock_;
    LibjpegImageControl& control_;
    bool taken_ = false;
    int decodeCount_ = 0;
};

} // namespace orvane
