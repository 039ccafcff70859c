#include <dlfcn.h>

#include "CLayout.h"
#include "kyr/TOSSpecific.h"
#include "unit/plugin/PluginTest.h"

namespace {

TEST(Abi, CallsWorkFromC) { EXPECT_EQ(UseDateTimeFromC(), kyrStatusOK); }

TEST(AbiDeathTest, AssertionsOfTheLibraryAreAliveInEveryBuildType) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    kyrPluginHandle handle = nullptr;
    EXPECT_DEATH(kyrRegisterPlugin(nullptr, &handle), "callbacks != __null");
}

// The host's copy of a constant and the library's would be two objects if the library bound its own symbols itself.
TEST(Abi, TheHostSeesTheLibrarysOwnConstants) { EXPECT_EQ(TOSSpecific::kPluginExtension, ".pi.so"); }

class APlugin : public PluginTest {};

// Host and plugin are built twice: linked with this library, and with one whose symbols have no versions.
TEST_F(APlugin, IsLoadedAndAskedByTheLibraryWithVersions) {
    InstallAndLoad("good", Class("A"));
    TQueryManager::GetInstance()->RunQuery(fManager.GetSchema(), {});
    EXPECT_EQ(Find("A")->EnumerateInstances(false).size(), 1u);
    EXPECT_THROW(Find("A")->GetPropertyDecl("None"), TKYRException);
    EXPECT_NE(dlvsym(RTLD_DEFAULT, "kyrAddClass", "KYRCORE_1.0"), nullptr);
}

}  // namespace
