#include "imaging/SoundPicture.h"

#include "imaging/JpegMarkers.h"

namespace orvane {

Task<Fault> pictureFault(ImageControl& control, const std::string& bytes) {
    // First: a page or a cut answer is no damaged picture, and costs no decoding.
    if (!isWholeJpeg(bytes)) co_return "the answer is not a whole JPEG picture";
    Task<Fault> checking = control.check(bytes);
    Fault fault = co_await checking;
    if (fault) fault = "the picture is damaged: " + *fault;
    co_return fault;
}

} // namespace orvane
