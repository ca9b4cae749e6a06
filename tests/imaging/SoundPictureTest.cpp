#include "imaging/JpegMarkers.h"

#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(SoundPicture, IsWholeAndDecodes) {
    JumpingClock clock(at(2025, 6, 21, 9, 30));
    LibjpegImageControl control(clock);
    const std::string whole = encoded(gradient(240, 160));
    const std::string notWhole = "the answer is not a whole JPEG picture";
    const std::pair<std::string, Fault> cases[] = {
        {whole, std::nullopt},
        {"", notWhole},
        {"<html>busy</html>", notWhole},
        {whole.substr(0, whole.size() / 2), notWhole},
        {whole.substr(0, whole.size() / 2) + "\xFF\xD9",
         "the picture is damaged: Corrupt JPEG data: premature end of data segment"}};
    for (const auto& [bytes, fault] : cases)
        EXPECT_EQ(finish(clock, pictureFault(control, bytes)), fault);
}

} // namespace
} // namespace orvane::test
