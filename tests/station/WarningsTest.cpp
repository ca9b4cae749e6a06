#include "station/Warnings.h"
#include "tests/support/JumpingClock.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

TEST(Warnings, KnowSinceWhenACauseStands) {
    JumpingClock clock(at(2006, 11, 15, 9));
    Warnings warnings(clock);
    EXPECT_EQ(warnings.since(Cause::NoImage), std::nullopt);
    warnings.set(Cause::NoImage, "No image at 08:00 and 08:30.");
    clock.run(30min);
    warnings.set(Cause::DiskSpace, "Little space.");
    warnings.set(Cause::NoImage, "No image at 08:30 and 09:00.");
    EXPECT_EQ(warnings.since(Cause::NoImage), at(2006, 11, 15, 9))
        << "another text, the same cause";
    EXPECT_EQ(warnings.since(Cause::DiskSpace), at(2006, 11, 15, 9, 30));
    EXPECT_EQ(warnings.standing().size(), 2U);
    warnings.clear(Cause::NoImage);
    EXPECT_EQ(warnings.since(Cause::NoImage), std::nullopt);
    clock.run(1min);
    warnings.set(Cause::NoImage, "No image at 09:00 and 09:30.");
    EXPECT_EQ(warnings.since(Cause::NoImage), at(2006, 11, 15, 9, 31)) << "it came again";
    EXPECT_EQ(warnings.text.get(), "No image at 09:00 and 09:30.\nLittle space.");
}

} // namespace
} // namespace orvane::test
