#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvane {

// How ffmpeg is asked for a film: a program that makes H.264 in MP4 of pictures piped into it. See
// its manual, ffmpeg(1).

struct FilmSize {
    int width = 0;
    int height = 0;
    bool operator==(const FilmSize&) const = default;
};

/// What a film is made of and how it will be.
struct FilmForm {
    FilmSize pictures; ///< as they are piped
    FilmSize film;     ///< even, as H.264's 4:2:0 wants it
    int rate = 25;     ///< pictures per second
};

/// Pixels that all players can do.
constexpr FilmSize kLargestFilm{3840, 2160};

/// Of a film with that many rows, 0 for those of its first picture, whose proportions it has. It is
/// even, and not larger than `kLargestFilm`.
FilmSize filmSizeOf(FilmSize firstPicture, int rows);

/// What has it list its encoders.
std::vector<std::string> encoderQuery();
/// The best H.264 encoder in that list that needs no special hardware; empty: there is none.
std::string h264EncoderIn(const std::string& list);

/// What has it make a film of frames of 32-bit pixels, 0xffRRGGBB, that come through its standard
/// input. An existing `target` is replaced. It says nothing but errors.
std::vector<std::string> filmArguments(const FilmForm& form, const std::string& encoder,
                                       const std::filesystem::path& target);

} // namespace orvane
