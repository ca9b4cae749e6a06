#include "platform/qt/JpegErrors.h"

#include <jerror.h>

namespace orvane {

namespace {

JpegErrors& errorsOf(j_common_ptr info) {
    return *static_cast<JpegErrors*>(info->err);
}

[[noreturn]] void leave(j_common_ptr info) {
    JpegErrors& errors = errorsOf(info);
    errors.format_message(info, errors.text);
    std::longjmp(errors.escape, 1);
}

/// Unusual headers that do not touch the pixels.
bool isHarmless(int code) {
    return code == JWRN_ADOBE_XFORM || code == JWRN_JFIF_MAJOR || code == JWRN_BOGUS_ICC;
}

void noteWarning(j_common_ptr info, int level) {
    JpegErrors& errors = errorsOf(info);
    if (level >= 0 || errors.corrupt || isHarmless(errors.msg_code)) return;
    errors.corrupt = true;
    errors.format_message(info, errors.text);
}

void printNothing(j_common_ptr) {}

} // namespace

JpegErrors::JpegErrors() : jpeg_error_mgr() {
    jpeg_std_error(this);
    error_exit = leave;
    emit_message = noteWarning;
    output_message = printNothing;
}

} // namespace orvane
