#include "archive/Ffmpeg.h"

#include "platform/Paths.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace orvane {

namespace {

constexpr int kSmallest = 16; ///< pixels; a macroblock
constexpr int kSecondsToKeyPicture = 2;
constexpr const char* kPixelFormat = std::endian::native == std::endian::little ? "bgr0" : "0rgb";

int even(double pixels) {
    return std::max(kSmallest, 2 * static_cast<int>(std::lround(pixels / 2)));
}

std::string text(FilmSize size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

/// The colours of what is piped are sRGB; players take a film's for BT.709, and are told so.
std::string filterOf(FilmSize film) {
    return "scale=" + std::to_string(film.width) + ":" + std::to_string(film.height) +
           ":flags=bicubic:out_color_matrix=bt709:out_range=tv,format=yuv420p,setsar=1";
}

/// x264 keeps a quality; the others are given an eighth of a bit for each pixel.
std::vector<std::string> qualityOf(const std::string& encoder, const FilmForm& form) {
    if (encoder == "libx264") return {"-preset", "fast", "-crf", "20", "-profile:v", "high"};
    const std::int64_t bits =
        std::int64_t{form.film.width} * form.film.height * std::max(form.rate, 10) / 8;
    return {"-b:v", std::to_string(bits)};
}

void append(std::vector<std::string>& list, const std::vector<std::string>& more) {
    list.insert(list.end(), more.begin(), more.end());
}

} // namespace

FilmSize filmSizeOf(FilmSize firstPicture, int rows) {
    const double width = firstPicture.width;
    const double height = firstPicture.height;
    const double wanted = rows > 0 ? rows / height : 1.0;
    const double scale =
        std::min({wanted, kLargestFilm.width / width, kLargestFilm.height / height});
    return {even(width * scale), even(height * scale)};
}

std::vector<std::string> encoderQuery() {
    return {"-hide_banner", "-encoders"};
}

std::string h264EncoderIn(const std::string& list) {
    for (const char* name : {"libx264", "libopenh264", "h264_mf"})
        if (list.find(" " + std::string(name) + " ") != std::string::npos) return name;
    return {};
}

std::vector<std::string> filmArguments(const FilmForm& form, const std::string& encoder,
                                       const std::filesystem::path& target) {
    const std::string rate = std::to_string(form.rate);
    const std::string keyPictures = std::to_string(form.rate * kSecondsToKeyPicture);
    std::vector<std::string> list{"-hide_banner", "-nostdin", "-loglevel",
                                  "error",        "-xerror",  "-y"};
    append(list, {"-f", "rawvideo", "-pixel_format", kPixelFormat, "-video_size",
                  text(form.pictures), "-framerate", rate, "-i", "pipe:0"});
    append(list, {"-an", "-vf", filterOf(form.film), "-c:v", encoder});
    append(list, qualityOf(encoder, form));
    append(list, {"-g", keyPictures, "-colorspace", "bt709", "-color_primaries", "bt709",
                  "-color_trc", "bt709", "-color_range", "tv"});
    append(list, {"-movflags", "+faststart", "-f", "mp4", utf8FromPath(target)});
    return list;
}

} // namespace orvane
