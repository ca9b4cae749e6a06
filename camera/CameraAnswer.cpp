#include "camera/CameraAnswer.h"

#include "imaging/JpegMarkers.h"

#include <string_view>

namespace orvane {

namespace {

/// "0.2": a number with one decimal place, rounded.
std::string tenths(std::size_t count, std::size_t unit) {
    const std::size_t rounded = (count * 10 + unit / 2) / unit;
    return std::to_string(rounded / 10) + "." + std::to_string(rounded % 10);
}

std::string bytesText(std::size_t bytes) {
    constexpr std::size_t kKilo = 1024;
    if (bytes < kKilo) return std::to_string(bytes) + " bytes";
    if (bytes < kKilo * kKilo) return std::to_string((bytes + kKilo / 2) / kKilo) + " kB";
    return tenths(bytes, kKilo * kKilo) + " MB";
}

} // namespace

std::string CameraAnswer::picture() const {
    if (!isPicture()) return {};
    std::string size = bytesText(bytes);
    if (width == 0) return size;
    return std::to_string(width) + " x " + std::to_string(height) + ", " + size;
}

std::string CameraAnswer::text() const {
    if (!isPicture()) return fault;
    return picture() + ", " + tenths(static_cast<std::size_t>(took.count()), 1000) + " s";
}

std::string shortReason(const std::string& fault) {
    for (const std::string_view end : {" from the camera", " to the camera"})
        if (fault.ends_with(end)) return fault.substr(0, fault.size() - end.size());
    return fault;
}

Task<CameraAnswer> judgeAnswer(ImageControl& control, const HttpReply& reply, Ticks took) {
    CameraAnswer answer;
    answer.answered = reply.ok || reply.status != 0;
    answer.took = took;
    if (!reply.ok) {
        answer.fault = shortReason(reply.fault);
        co_return answer;
    }
    Task<Fault> checking = pictureFault(control, reply.body);
    const Fault fault = co_await checking;
    if (fault) {
        answer.fault = isWholeJpeg(reply.body) ? *fault : "not a picture: " + *fault;
        co_return answer;
    }
    answer.bytes = reply.body.size();
    if (const auto size = jpegSize(reply.body)) {
        answer.width = size->width;
        answer.height = size->height;
    }
    co_return answer;
}

} // namespace orvane
