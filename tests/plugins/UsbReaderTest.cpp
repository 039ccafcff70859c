#include <gtest/gtest.h>

#include "UsbFacts.h"

TEST(UsbReaderTest, FieldsAreReadOrRefused) {
    EXPECT_EQ(HubOf("1-1.2.3"), "1-1.2");
    EXPECT_EQ(HubOf("10-4"), "usb10");
    EXPECT_EQ(HubOf("usb1"), "");
    // clang-format off
    // The text as a speed, as a current and as a release.
    const std::tuple<const char*, uint64_t, uint32_t, const char*> cases[] = {
        {"1.5", 1'500'000, 0, "-"}, {"480", 480'000'000, 0, "-"}, {"500mA", 0, 500, "-"}, {"mA", 0, 0, "-"},
        {"7200", 7'200'000'000, 0, "72.00"}, {"0110", 110'000'000, 0, "1.10"}, {"12:5", 0, 0, "-"}, {"", 0, 0, "-"}};
    // clang-format on
    for (const auto& [text, speed, current, release] : cases) {
        EXPECT_EQ(ParseUsbSpeed(text).value_or(0), speed) << text;
        EXPECT_EQ(ParseMilliAmperes(text).value_or(0), current) << text;
        EXPECT_EQ(ParseRelease(text).value_or("-"), release) << text;
    }
}
