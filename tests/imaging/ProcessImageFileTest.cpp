#include "imaging/ProcessImageFile.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr std::int16_t kOn = -1;
constexpr int kMake = 0x010F, kOrientation = 0x0112, kDateTimeOriginal = 0x9003;

using Names = std::vector<std::string>;

struct ProcessImageFileTest : testing::Test {
    Fault process(const ImageOptions& options, bool processingOn = true) {
        return finish(clock_, ProcessImageFile(control_, image_, options, processingOn));
    }
    Names edited() const { return listing(folder_.path() / "Edit"); }

    TempFolder folder_;
    std::filesystem::path image_ = folder_.path() / "20250621" / "20250621_093000_00.jpg";
    std::filesystem::path copy_ = folder_.path() / "Edit" / "20250621" / "20250621_093000_00.jpg";
    std::string source_ = encoded(gradient(320, 240));
    JumpingClock clock_{at(2025, 6, 21, 9, 30)};
    LibjpegImageControl control_{clock_};
};

TEST_F(ProcessImageFileTest, AppliesMirrorAndStampAndKeepsTheRawFile) {
    writeFile(image_, source_);
    ASSERT_EQ(process({.LrFlg = kOn, .RawFlg = kOn}, false), std::nullopt);
    EXPECT_EQ(edited(), Names()) << "switched off";
    const struct {
        ImageOptions options;
        bool mirrored, stamped;
    } cases[] = {
        {{.Quality = 2, .JpegTyp = 98}, false, false},
        {{.Quality = 2, .DateFlg = kOn, .JpegTyp = 98}, false, false},
        {{.Quality = 2, .LrFlg = kOn, .JpegTyp = 98}, true, false},
        {{.Quality = 2, .LrFlg = kOn, .DateFlg = kOn, .RawFlg = kOn, .JpegTyp = 98}, true, true}};
    for (const auto& [options, mirrored, stamped] : cases) {
        ASSERT_EQ(process(options), std::nullopt);
        const QImage plain = gradient(320, 240).mirrored(mirrored, false);
        const QImage result = decoded(copy_);
        const QRect upper(0, 0, 320, 200), corner(0, 210, 150, 30);
        EXPECT_LE(meanDifference(result.copy(upper), plain.copy(upper)), 2);
        EXPECT_EQ(difference(result.copy(corner), plain.copy(corner)) > 100, stamped);
        EXPECT_EQ(contentsOf(image_), source_) << "the camera's file was changed";
        EXPECT_TRUE(control_.picture().isNull()) << "the pixels are still held";
        EXPECT_EQ(std::filesystem::exists(rawPathOf(image_)), options.RawFlg != 0);
        const JpegParts parts = partsOf(contentsOf(copy_));
        EXPECT_EQ(parts.sampling.front(), 0x11);
        EXPECT_EQ(parts.all(0xDB).front()[64], 4) << "of quality 98";
    }
    EXPECT_EQ(edited(), (Names{"20250621", "20250621/20250621_093000_00.jpg",
                               "20250621/20250621_093000_00_raw.jpg"}));
    EXPECT_EQ(contentsOf(rawPathOf(image_)), source_);
}

/// A picture that is turned by its header is worked on as a whole, any other one some rows after
/// the others: they must not differ.
TEST_F(ProcessImageFileTest, RowsAfterRowsOrAsAWholeIsTheSame) {
    const QImage sky = gradient(1500, 1000);
    for (const std::int16_t format : {ImageControl::kFormatExif, ImageControl::kFormat444})
        for (const bool progressive : {false, true}) {
            SCOPED_TRACE(std::to_string(format) + (progressive ? " progressive" : ""));
            QImage made[2];
            for (const int orientation : {1, 3}) {
                const std::string exif = exifPayload(
                    {textEntry(kMake, "SkyCam"), shortEntry(kOrientation, orientation)}, {});
                const bool turned = orientation == 3;
                writeFile(image_,
                          withSegments(encoded(sky.mirrored(turned, turned), 95, progressive),
                                       segment(0xE1, exif) + segment(0xFE, "roof")));
                ASSERT_EQ(process({.Quality = 2, .LrFlg = kOn, .DateFlg = kOn, .JpegTyp = format}),
                          std::nullopt);
                made[turned ? 1 : 0] = decoded(copy_);
                const JpegParts parts = partsOf(contentsOf(copy_));
                EXPECT_EQ(parts.all(0xFE), std::vector<std::string>{"roof"});
                if (format == ImageControl::kFormat444) continue;
                const TiffEntries written = tiffEntries(parts.tiff());
                EXPECT_EQ(textOf(written, Ifd::Zero, kMake), "SkyCam");
                EXPECT_EQ(textOf(written, Ifd::Exif, kDateTimeOriginal), "2025:06:21 09:30:00");
            }
            EXPECT_EQ(made[0].size(), made[1].size());
            EXPECT_LT(meanDifference(made[0], made[1]), 1);
            EXPECT_LT(difference(made[0], made[1]), 30) << "the stamp stands where it stood";
        }
}

TEST_F(ProcessImageFileTest, FailureLeavesNoFile) {
    for (const std::string& bytes :
         {std::string("<html>busy</html>"), source_.substr(0, source_.size() / 2), std::string()}) {
        writeFile(image_, bytes);
        EXPECT_NE(process({.RawFlg = kOn}).value_or(""), "");
        EXPECT_EQ(edited(), Names());
        EXPECT_EQ(contentsOf(image_), bytes);
    }
    std::filesystem::remove(image_);
    EXPECT_EQ(process({}), "No such file or directory");

    writeFile(image_, source_);
    EXPECT_EQ(process({.JpegTyp = 11}), "Unknown picture format 11");
    EXPECT_EQ(edited(), Names{"20250621"});

    const auto edit = folder_.path() / "Edit";
    std::filesystem::remove_all(edit);
    writeFile(edit, "a file of the user's");
    EXPECT_NE(process({.RawFlg = kOn}).value_or(""), "");
    EXPECT_TRUE(control_.picture().isNull());
    EXPECT_EQ(contentsOf(edit), "a file of the user's");
}

TEST_F(ProcessImageFileTest, MayBeDestroyedAtAnyWait) {
    writeFile(image_, encoded(gradient(1500, 1000)));
    const int waits = destroyAtEveryWait(clock_, [this] {
        EXPECT_LE(edited().size(), 1u) << "no more than the folder of the day";
        const ImageOptions options{.LrFlg = kOn, .DateFlg = kOn, .RawFlg = kOn};
        return ProcessImageFile(control_, image_, options, true);
    });
    EXPECT_GE(waits, 4) << "loading and saving 1.5 megapixels take two waits each";
}

TEST(ProcessedPaths, LieInTheEditTree) {
    const std::filesystem::path data = std::filesystem::path("sky") / u8"空の写真";
    EXPECT_EQ(editPathOf(data / "20250621" / "a.jpg"), data / "Edit" / "20250621" / "a.jpg");
    EXPECT_EQ(rawPathOf(data / "20250621" / "a.b.jpg"), data / "Edit" / "20250621" / "a.b_raw.jpg");
    EXPECT_EQ(editPathOf("20250621/a.jpg"), std::filesystem::path("Edit/20250621/a.jpg"));
}

TEST(StampText, IsCutByPosition) {
    const struct {
        const char8_t* path;
        const char *text, *exif;
    } cases[] = {
        {u8"/data/20250621/20250621_093005_00.jpg", "2025/06/21 09:30", "2025:06:21 09:30:05"},
        {u8"/data/x/20250621_093005_00.jpeg", "0250/62/1_ 93:00", ""}, // the last 22 characters
        {u8"/sky.jpg", "/sky/.j/pg :", ""},
        {u8"a", "a// :", ""},
        {u8"", "// :", ""},
        {u8"20250621_0930", "2025/06/21 09:30", ""},
        {u8"/写真/20250621_093005_空0.jpg", "2025/06/21 09:30", "2025:06:21 09:30:05"},
        {u8"空空空空空空空空空空空空空空空空空空空空空空空", "空空空空/空空/空空 空空:空空", ""},
        {u8"/data/2025o621_093005_00.jpg", "2025/o6/21 09:30", ""}};
    for (const auto& [path, text, exif] : cases) {
        EXPECT_EQ(stampTextOf(path), text);
        EXPECT_EQ(exifStampOf(path), exif);
    }
}

} // namespace
} // namespace orvane::test
