#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "CLayout.h"
#include "kyr/TOSSpecific.h"

namespace {

TEST(Abi, RecordsHaveTheSameLayoutInCAndCpp) {
    const CLayout c = LayoutInC();
    EXPECT_EQ(c.infoSize, 32u);
    EXPECT_EQ(c.infoSize, sizeof(kyrPluginInfo));
    EXPECT_EQ(c.infoPluginType, offsetof(kyrPluginInfo, pluginType));
    EXPECT_EQ(c.infoUrlType, offsetof(kyrPluginInfo, urlType));
    EXPECT_EQ(c.callbacksSize, 48u);
    EXPECT_EQ(c.callbacksSize, sizeof(kyrPluginCallbacks));
    EXPECT_EQ(c.callbacksGetData, offsetof(kyrPluginCallbacks, getData));
    EXPECT_EQ(c.callbacksPrepareForUnload, offsetof(kyrPluginCallbacks, prepareForUnload));
    EXPECT_EQ(c.statusSize, 4u);
    EXPECT_EQ(c.statusSize, sizeof(kyrStatusCode));
    EXPECT_EQ(c.severitySize, sizeof(kyrLogSeverity));
}

TEST(Abi, CallsWorkFromC) { EXPECT_EQ(UseDateTimeFromC(), kyrStatusOK); }

TEST(AbiDeathTest, AssertionsOfTheLibraryAreAliveInEveryBuildType) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    kyrPluginHandle handle = nullptr;
    EXPECT_DEATH(kyrRegisterPlugin(nullptr, &handle), "callbacks != __null");
}

// The host's copy of a constant and the library's would be two objects if the library bound its own symbols itself.
TEST(Abi, TheHostSeesTheLibrarysOwnConstants) { EXPECT_EQ(TOSSpecific::kPluginExtension, ".pi.so"); }

}  // namespace
