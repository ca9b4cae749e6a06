#pragma once

#include "platform/Conversions.h"

#include <compare>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// The name of a recorded picture, "yyyymmdd_hhmmss_ff.jpg": the local second it was taken in and
/// the frame, which counts the pictures of one second from 00. In order of time. Captures have the
/// second 00; another second tells that a picture comes from the camera's own store.
class ImageName {
  public:
    static constexpr std::string_view kForm = "yyyymmdd_hhmmss_ff.jpg";
    static constexpr int kFrames = 100; ///< of one second

    /// Nothing for a text of another form and for a day or time that no calendar or clock knows.
    /// The extension may be written in capital letters.
    static std::optional<ImageName> parse(std::string_view text);
    static std::optional<ImageName> ofFile(const std::filesystem::path& file);
    /// The name of a capture in the minute of `time`.
    static ImageName ofCapture(WallTime time);

    std::string text() const;
    /// The same for people, in English: "15 Nov 2006 12:25", with seconds and frame where they are
    /// not 0: "15 Nov 2006 12:25:07, frame 1".
    std::string title() const;
    WallTime time() const { return WallTime(second_); }
    /// Days, minutes and seconds as the calendar and clock show them.
    std::chrono::local_days day() const { return std::chrono::floor<std::chrono::days>(second_); }
    std::int64_t minute() const { return minuteIndex(time()); }
    bool isCapture() const { return second_ == std::chrono::floor<std::chrono::minutes>(second_); }
    int frame() const { return frame_; } ///< 0 to 99
    ImageName withFrame(int frame) const { return {second_, frame}; }

    auto operator<=>(const ImageName&) const = default;

  private:
    ImageName(std::chrono::local_seconds second, int frame) : second_(second), frame_(frame) {}

    std::chrono::local_seconds second_;
    int frame_;
};

} // namespace orvane
