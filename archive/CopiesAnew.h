#pragma once

#include "archive/SpanWork.h"
#include "imaging/ImageOptions.h"
#include "platform/ImageControl.h"

namespace orvane {

/// Makes the processed copies of some days anew, with the options as they are when it begins:
/// mirroring and stamp are off after every start, so those of a whole night may be wrong. The
/// pictures themselves are only read. Each copy is read back and decoded once it is written.
///
/// A picture without a copy is counted, logged (the first ten) and passed over, as is a day whose
/// folder cannot be read; several in a row that fail although they are whole end the work: the disk
/// is full, or "Edit" cannot be written.
class CopiesAnew final : public SpanWork {
  public:
    /// `control` is for this alone and outlives it.
    CopiesAnew(Parts parts, ImageControl& control)
        : SpanWork("CopiesAnew", parts), control_(control) {}

    /// Nothing happens while it is running.
    void start(DaySpan span, const ImageOptions& options);

  private:
    Task<Fault> workOn(std::chrono::local_days day) override;
    std::string outcome() const override;
    Task<Fault> make(std::filesystem::path image);
    Fault checkRaw(const std::filesystem::path& image) const;
    void note(const std::filesystem::path& entry, const Fault& fault);

    ImageControl& control_;
    ImageOptions options_;
    int made_ = 0;
    int failed_ = 0;
    int failedInARow_ = 0;
    int unread_ = 0; ///< days
};

/// "mirrored, with date stamp, 4:4:4, high quality, untouched picture beside it".
std::string describe(const ImageOptions& options);

} // namespace orvane
