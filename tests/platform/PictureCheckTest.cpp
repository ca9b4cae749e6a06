#include "platform/qt/LibjpegImageControl.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <random>

namespace orvane::test {
namespace {

const std::string kEnd = "\xFF\xD9";
constexpr int kBlocks = 64; ///< of each component of a flat picture, in 128 bits

struct PictureCheckTest : testing::Test {
    Fault check(const std::string& jpeg) { return finish(clock_, control_.check(jpeg)); }
    Fault decode(const std::string& jpeg) { return finish(clock_, control_.decode(jpeg)); }

    JumpingClock clock_{at(2025, 6, 21, 9, 30)};
    LibjpegImageControl control_{clock_};
};

/// The header of a picture of any number of components. Its Huffman tables know one code each: "0"
/// is both "as the block before" and "end of block".
std::string header(int components, int width = 64, int height = 64) {
    std::string frame = {8};
    for (const int byte : {height >> 8, height & 0xFF, width >> 8, width & 0xFF, components})
        frame += static_cast<char>(byte);
    for (int i = 1; i <= components; ++i)
        frame += {static_cast<char>(i), 0x11, 0};
    const std::string oneCode = '\1' + std::string(16, '\0');
    return "\xFF\xD8" + segment(0xDB, '\0' + std::string(64, '\1')) + segment(0xC0, frame) +
           segment(0xC4, '\0' + oneCode) + segment(0xC4, '\x10' + oneCode);
}

/// One scan of the components `first` to `last` with all of their blocks.
std::string scan(int first, int last) {
    std::string components = {static_cast<char>(last - first + 1)};
    for (int i = first; i <= last; ++i)
        components += {static_cast<char>(i), 0};
    const auto blocks = static_cast<std::size_t>(kBlocks * (last - first + 1));
    return segment(0xDA, components + std::string("\0\x3F\0", 3)) + std::string(blocks / 4, '\0');
}

std::string inOneScan(int components) {
    return header(components) + scan(1, components) + kEnd;
}

std::string inAScanEach(int components, int repeated = 1) {
    std::string jpeg = header(components);
    for (int round = 0; round < repeated; ++round)
        for (int i = 1; i <= components; ++i)
            jpeg += scan(i, i);
    return jpeg + kEnd;
}

/// Grey, restarting after each of eight rows of blocks; `order` numbers the marks.
std::string withRestarts(const std::string& order) {
    std::string jpeg = header(1) + segment(0xDD, std::string("\0\x8", 2));
    const std::string whole = scan(1, 1);
    jpeg += whole.substr(0, whole.size() - kBlocks / 4);
    for (const char number : order)
        jpeg += std::string("\0\0\xFF", 3) + static_cast<char>(0xD0 + number - '0');
    return jpeg + std::string(2, '\0') + kEnd;
}

TEST_F(PictureCheckTest, SoundPicturesPass) {
    const QImage picture = gradient(120, 80);
    const std::string whole = encoded(picture);
    std::string later = whole;
    later.at(11) = 9; // behind the start marker, the segment's head and "JFIF"
    const struct {
        const char* name;
        std::string bytes;
        const char* notShown = ""; ///< why it cannot be decoded all the same
    } cases[] = {
        {"baseline", whole},
        {"progressive", encoded(picture, 90, true)},
        {"grey", encoded(picture.convertToFormat(QImage::Format_Grayscale8))},
        {"smaller than a block", encoded(gradient(3, 2))},
        {"a scan for each component", inAScanEach(3)},
        {"two components", inOneScan(2), "Unsupported color conversion request"},
        {"CMYK", inOneScan(4), "CMYK pictures are not supported"},
        {"CMYK, a scan for each component", inAScanEach(4), "CMYK pictures are not supported"},
        {"restart markers", withRestarts("0123456")},
        {"unusable colour profile",
         withSegments(whole, segment(0xE2, std::string("ICC_PROFILE\0\7\2?", 15)))},
        {"unknown Adobe transform",
         withSegments(inOneScan(3), segment(0xEE, std::string("Adobe\0\x64\0\0\0\0\7", 12)))},
        {"later JFIF version", later},
        {"bytes behind the end", whole + std::string(500, '\0')}};
    for (const auto& [name, bytes, notShown] : cases) {
        EXPECT_EQ(check(bytes), std::nullopt) << name;
        EXPECT_EQ(decode(bytes).value_or(""), notShown) << name;
    }
    EXPECT_EQ(decode(header(3, 20000, 20000) + scan(1, 3) + kEnd),
              "Picture of 20000 x 20000 pixels is too large");
}

TEST_F(PictureCheckTest, DamagedPicturesAreRefused) {
    const QImage picture = gradient(120, 80);
    const std::string whole = encoded(picture);
    std::string filled = inOneScan(3);
    filled.insert(filled.size() - kEnd.size(), 20, '\0');
    ASSERT_EQ(decode(whole), std::nullopt);
    const std::pair<std::string, const char*> cases[] = {
        {"", "Empty input file"},
        {"<html>busy</html>", "Not a JPEG file"},
        {whole.substr(0, whole.size() / 2) + kEnd, "premature end of data segment"},
        {whole.substr(0, whole.size() - 2), "Premature end of JPEG file"},
        {header(3, 65535, 65535) + scan(1, 3) + kEnd,
         "Maximum supported image dimension is 65500 pixels"},
        {header(4, 20000, 20000) + scan(1, 4) + kEnd, "20000 x 20000 pixels is too large"},
        {inAScanEach(3, 67), "Too many scans"},
        {header(3) + scan(1, 1) + scan(2, 2) + kEnd, "Parts of the picture are missing"},
        {header(3) + kEnd, ""},
        {withRestarts("0134567"), "found marker 0xd3 instead of RST2"},
        {withRestarts("012345"), "found marker 0xd9 instead of RST6"},
        {filled, "extraneous bytes before marker 0xd9"}};
    for (const auto& [bytes, reason] : cases) {
        const std::string fault = check(bytes).value_or("none");
        EXPECT_NE(fault.find(reason), std::string::npos) << fault << " instead of " << reason;
        EXPECT_NE(fault, "none") << reason;
    }
    EXPECT_LE(meanDifference(control_.picture(), picture), 2) << "the one in the control stays";
}

TEST_F(PictureCheckTest, EveryCutPictureWithAnEndMarkerIsRefused) {
    const QImage picture = gradient(40, 24);
    for (const std::string& whole : {encoded(picture, 80), encoded(picture, 80, true),
                                     encoded(picture.convertToFormat(QImage::Format_Grayscale8)),
                                     inOneScan(4), inAScanEach(2), withRestarts("0123456")}) {
        ASSERT_EQ(check(whole), std::nullopt);
        for (std::size_t length = 0; length + kEnd.size() < whole.size(); ++length)
            EXPECT_NE(check(whole.substr(0, length) + kEnd).value_or(""), "") << length;
    }
}

/// What is left out on the way to an eighth of the size must not hide a fault.
TEST_F(PictureCheckTest, FlippedBytesAreNoticedAsByTheFullDecoding) {
    std::mt19937 random(1);
    int noticed = 0;
    for (const bool progressive : {false, true}) {
        const std::string whole = encoded(gradient(240, 160), 90, progressive);
        for (int round = 0; round < 400; ++round) {
            std::string flipped = whole;
            const std::size_t scans = whole.find("\xFF\xDA") + 14;
            char& byte = flipped[scans + random() % (whole.size() - scans)];
            byte = static_cast<char>(byte ^ (1 + random() % 255));
            const Fault fault = check(flipped);
            EXPECT_EQ(fault, decode(flipped)) << progressive << ' ' << &byte - flipped.data();
            noticed += fault ? 1 : 0;
        }
    }
    EXPECT_GT(noticed, 400);
}

TEST_F(PictureCheckTest, MayBeDestroyedAtAnyWait) {
    for (const bool progressive : {false, true}) {
        const std::string jpeg = encoded(gradient(1500, 1000), 90, progressive);
        const int waits = destroyAtEveryWait(clock_, [&] { return control_.check(jpeg); });
        // 1.5 megapixels in slices of half a megapixel, every scan of a progressive file
        EXPECT_GE(waits, progressive ? 10 : 3);
    }
}

} // namespace
} // namespace orvane::test
