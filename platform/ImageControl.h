#pragma once

#include "platform/Fault.h"
#include "platform/Task.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane {

/// A picture's pixels, row by row from the top, 0xffRRGGBB each.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> data{}; ///< width * height
};

/// One picture in memory: load, change, save. Long work is cut into slices between which the
/// window stays alive. A failed call leaves no file behind.
class ImageControl {
  public:
    static constexpr std::int16_t kFormatExif = 10; ///< EXIF header, 4:2:0
    static constexpr std::int16_t kFormat444 = 98;  ///< JFIF header, 4:4:4

    virtual ~ImageControl() = default;
    /// Decodes a JPEG file, turned upright by its EXIF orientation.
    virtual Task<Fault> load(std::filesystem::path file) = 0;
    /// The same, decoded in the smallest eighth of its size that has at least `rows` rows; whole
    /// when it has fewer itself.
    virtual Task<Fault> loadReduced(std::filesystem::path file, int rows) = 0;
    /// Judges the JPEG file in `jpeg`, which outlives the task. A sound one decodes to its end
    /// without an error, lost data or a part that never came; kinds that `load` refuses, such as
    /// CMYK, may be sound, but none beyond 100 megapixels or 200 scans, or coded in a way that
    /// cannot be decoded at all. The picture in the control stays as it is.
    virtual Task<Fault> check(const std::string& jpeg) = 0;
    virtual void mirror() = 0; ///< left to right
    /// Draws `text` into the lower left corner, white with a thin dark outline.
    virtual void drawText(const std::string& text) = 0;
    /// Gives the picture that size: scaled in its own proportions, in the middle of black.
    virtual void fitInto(int width, int height) = 0;
    virtual Pixels pixels() const = 0;
    /// Puts `pixels` in the picture's place.
    virtual void take(Pixels pixels) = 0;
    /// Writes the picture as a JPEG file under its final name, replacing an older one at once or
    /// not at all. `factor` is the compression factor: JPEG quality is 100 - factor, within 1..100.
    /// `stamp`, "yyyy:mm:dd hh:mm:ss", becomes EXIF DateTimeOriginal when the format has one.
    virtual Task<Fault> save(std::filesystem::path file, std::int16_t format, std::int16_t factor,
                             std::string stamp) = 0;
    /// The picture as the bytes of a JFIF file, 4:4:4; `quality` 1 to 100. Empty without a picture.
    virtual Task<std::string> encode(int quality) = 0;
    virtual void clear() = 0; ///< frees the pixels

    /// How `rewrite` changes and saves a picture; see the functions of these names.
    struct Rewriting {
        bool mirror = false;
        std::string text{}; ///< empty: none is drawn
        std::int16_t format = kFormatExif;
        std::int16_t factor = 0;
        std::string stamp{};
    };
    /// Loads `from`, changes it and saves it as `to`, whose folder is made when there is something
    /// to save. No picture is in the control afterwards.
    virtual Task<Fault> rewrite(std::filesystem::path from, std::filesystem::path to,
                                Rewriting how);
};

} // namespace orvane
