#include <gtest/gtest.h>

#include "CLayout.h"
#include "kyr/TOSSpecific.h"

namespace {

TEST(Abi, CallsWorkFromC) { EXPECT_EQ(UseDateTimeFromC(), kyrStatusOK); }

TEST(AbiDeathTest, AssertionsOfTheLibraryAreAliveInEveryBuildType) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    kyrPluginHandle handle = nullptr;
    EXPECT_DEATH(kyrRegisterPlugin(nullptr, &handle), "callbacks != __null");
}

// The host's copy of a constant and the library's would be two objects if the library bound its own symbols itself.
TEST(Abi, TheHostSeesTheLibrarysOwnConstants) { EXPECT_EQ(TOSSpecific::kPluginExtension, ".pi.so"); }

}  // namespace
