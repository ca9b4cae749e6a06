#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(LedgerOnAFullDisk, CostsNoCapture) {
    TestStation s(at(2006, 11, 15, 8, 50));
    std::filesystem::create_directory(s.dataFolder() / "Ledger");
    std::filesystem::create_symlink("/dev/full", s.dataFolder() / "Ledger" / "20061115.csv");
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 17, 10));
    EXPECT_EQ(s.imagesOf("20061115").size(), 16U);
    EXPECT_EQ(s.countLogged("The day's ledger cannot be written: No space left on device"), 1);
    EXPECT_EQ(s.warnings.text.get(), "");
    EXPECT_EQ(s.days.plan().taken, 16);
}

} // namespace
} // namespace orvane::test
