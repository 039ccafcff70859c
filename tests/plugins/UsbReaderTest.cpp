#include <gtest/gtest.h>

#include "UsbFacts.h"

TEST(UsbReaderTest, FieldsAreReadOrRefused) {
    EXPECT_EQ(HubOf("1-1.2.3"), "1-1.2");
    EXPECT_EQ(HubOf("10-4"), "usb10");
    EXPECT_EQ(HubOf("usb1"), "");
    const struct {
        const char* text;
        uint64_t speed;
        uint32_t current;
        const char* release;
    } cases[] = {{"1.5", 1'500'000, 0, "-"},
                 {"480", 480'000'000, 0, "-"},
                 {"500mA", 0, 500, "-"},
                 {"mA", 0, 0, "-"},
                 {"7200", 7'200'000'000, 0, "72.00"},
                 {"0110", 110'000'000, 0, "1.10"},
                 {"12:5", 0, 0, "-"},
                 {"", 0, 0, "-"}};
    for (const auto& c : cases) {
        EXPECT_EQ(ParseUsbSpeed(c.text).value_or(0), c.speed) << c.text;
        EXPECT_EQ(ParseMilliAmperes(c.text).value_or(0), c.current) << c.text;
        EXPECT_EQ(ParseRelease(c.text).value_or("-"), c.release) << c.text;
    }
}
