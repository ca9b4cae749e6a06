#include "imaging/ProcessImageFile.h"

#include "platform/Files.h"

#include <algorithm>
#include <vector>

namespace orvane {

namespace {

/// The last 22 characters of a path, the length of an image name, addressed from 1. A character is
/// a UTF-8 sequence; bytes that are no UTF-8 stay with the character before them.
class NameTail {
  public:
    explicit NameTail(const std::filesystem::path& image) {
        const std::u8string text = image.u8string();
        std::size_t end = text.size();
        while (end > 0 && characters_.size() < kLength) {
            std::size_t start = end - 1;
            while (start > 0 && (text[start] & 0xC0) == 0x80)
                --start;
            characters_.emplace_back(text.begin() + static_cast<std::ptrdiff_t>(start),
                                     text.begin() + static_cast<std::ptrdiff_t>(end));
            end = start;
        }
        std::reverse(characters_.begin(), characters_.end());
    }

    std::string part(std::size_t first, std::size_t count) const {
        std::string text;
        const std::size_t end = std::min(first - 1 + count, characters_.size());
        for (std::size_t i = first - 1; i < end; ++i)
            text += characters_[i];
        return text;
    }

    bool digits(std::size_t first, std::size_t count) const {
        const std::string text = part(first, count);
        return text.size() == count &&
               std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    }

  private:
    static constexpr std::size_t kLength = 22;
    std::vector<std::string> characters_;
};

} // namespace

std::filesystem::path editPathOf(const std::filesystem::path& image) {
    const std::filesystem::path dated = image.parent_path();
    return dated.parent_path() / "Edit" / dated.filename() / image.filename();
}

std::filesystem::path rawPathOf(const std::filesystem::path& image) {
    std::filesystem::path name = image.stem();
    name += "_raw.jpg";
    return editPathOf(image).replace_filename(name);
}

std::string stampTextOf(const std::filesystem::path& image) {
    const NameTail tail(image);
    return tail.part(1, 4) + "/" + tail.part(5, 2) + "/" + tail.part(7, 2) + " " +
           tail.part(10, 2) + ":" + tail.part(12, 2);
}

std::string exifStampOf(const std::filesystem::path& image) {
    const NameTail tail(image);
    if (!tail.digits(1, 8) || !tail.digits(10, 6)) return {};
    return tail.part(1, 4) + ":" + tail.part(5, 2) + ":" + tail.part(7, 2) + " " +
           tail.part(10, 2) + ":" + tail.part(12, 2) + ":" + tail.part(14, 2);
}

void applyOptions(ImageControl& control, const ImageOptions& options,
                  const std::filesystem::path& image) {
    if (!isSet(options.LrFlg)) return;
    control.mirror();
    if (isSet(options.DateFlg)) control.drawText(stampTextOf(image));
}

Task<Fault> ProcessImageFile(ImageControl& control, std::filesystem::path image,
                             ImageOptions options, bool processingOn) {
    if (!processingOn) co_return std::nullopt;
    const bool mirrored = isSet(options.LrFlg);
    const bool stamped = mirrored && isSet(options.DateFlg);
    const ImageControl::Rewriting how{mirrored, stamped ? stampTextOf(image) : std::string(),
                                      options.JpegTyp, options.Quality, exifStampOf(image)};
    Task<Fault> rewriting = control.rewrite(image, editPathOf(image), how);
    Fault fault = co_await rewriting;
    if (!fault && isSet(options.RawFlg)) fault = copyToFinalName(image, rawPathOf(image));
    co_return fault;
}

} // namespace orvane
