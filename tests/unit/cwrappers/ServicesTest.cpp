#include "cwrappers/TCPluginCallbacks.h"
#include "cwrappers/kyriIOHandle.h"
#include "kyr/IPlugin.h"
#include "kyr/TPluginManager.h"
#include "kyr/kyrPlugin.h"
#include "support/SchemaBuilder.h"

namespace {

kyrStatusCode gStatus;  // what every entry returns
TLines gSeen;           // which entries were called

template <const char* kEntry>
kyrStatusCode Saw(kyrPluginHandle) {
    gSeen.push_back(kEntry);
    return gStatus;
}
constexpr char kInit[] = "init", kDeInit[] = "deInit", kUnload[] = "prepareForUnload";

TCIMInstance* gOpen;  // when the data entry returned

kyrStatusCode GetData(kyrPluginHandle, kyrIOHandle handle, const char** names, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) kyrAddClass(handle, names[i]);
    gOpen = handle->fCurrentInstance;
    return gStatus;
}

kyrPluginInfo GetInfo(kyrPluginHandle) { return {"linked", "1.2", "3.4", 7, 8}; }

/// A plugin that is linked in: it registers by hand, and the manager goes with the test.
class ServicesTest : public LoggedTest {
protected:
    ServicesTest() {
        TPluginManager::Initialize("");
        gStatus = kyrStatusOK;
        gSeen.clear();
        kyrPluginCallbacks entries = {nullptr, Saw<kInit>, Saw<kDeInit>, GetData, GetInfo, Saw<kUnload>};
        EXPECT_EQ(kyrRegisterPlugin(&entries, &fPlugin), kyrStatusOK);
        entries = {};
    }
    ~ServicesTest() override {
        delete fPlugin;
        delete TPluginManager::GetInstance();
    }

    TContainer& Schema() const { return *TPluginManager::GetInstance()->GetSchema(); }
    kyrStatusCode StatusOfGetData(std::vector<TCIMClass*> classes) {
        return StatusOf([&] { fPlugin->GetData(&Schema(), classes); });
    }

    kyrPluginHandle fPlugin = nullptr;
};

TEST_F(ServicesTest, EveryStatusHasItsOwnNameAsText) {
    // clang-format off
    const std::pair<int32_t, const char*> cases[] = {
        {0, "kyrStatusOK"}, {12, "kyrStatusDirectoryAlreadyExists"}, {26, "kyrStatusFileNotFound"}};
    // clang-format on
    for (const auto& [code, text] : cases) EXPECT_STREQ(kyrTranslateStatusCode(code), text) << code;
    for (const int32_t code : {38, 39, 1000, -1, INT32_MIN})
        EXPECT_STREQ(kyrTranslateStatusCode(code), "kyrStatusEnd") << code;
    EXPECT_EQ(TKYRException(kyrStatusFileNotFound).what(), kKYRErrorMessages[26]);
}

TEST_F(ServicesTest, PluginsWriteToTheLogUnderTheirName) {
    TempFolder folder;
    fLog.Logger().SetLogFilename(folder.Path() + "/log");
    kyrWriteLog(nullptr, kyrLogWarning, "text");
    kyrWriteLog(fPlugin, kyrLogStatus, "text");
    kyrWriteLog(fPlugin, kyrLogStatus, nullptr);
    EXPECT_EQ(StatusOf([&] { kyrWriteLog(nullptr, static_cast<kyrLogSeverity>(-1), "text"); }), kyrStatusFail);
    EXPECT_EQ(kyrGetPluginPath(fPlugin, nullptr), kyrStatusFail);
    EXPECT_EQ(ReadFile(folder.Path() + "/log"),
              "-- ORQ Log Opened ----------------------------\n"
              "KYR_Core: [Warning] text\n"
              "KYR_linked: [Status] text\n"
              "KYR_Core: [Status] kyrWriteLog: NULL text parameter\n"
              "KYR_linked: [Error] kyrGetPluginPath: NULL path parameter\n");
}

TEST_F(ServicesTest, TheHandleAnswersForThePlugin) {
    EXPECT_EQ(fPlugin->GetName() + fPlugin->GetVersion() + fPlugin->GetInterfaceVersion(), "linked1.23.4");
    EXPECT_EQ(fPlugin->GetType(), 7);
    EXPECT_EQ(fPlugin->GetURLType(), 8);
    kyrPluginId id = nullptr;
    EXPECT_EQ(kyrGetHandle(fPlugin, &id), kyrStatusOK);
    EXPECT_EQ(id->GetCallbacks(), fPlugin);
}

TEST_F(ServicesTest, AnEntrysStatusIsRaisedAsItIs) {
    gStatus = static_cast<kyrStatusCode>(1000);
    EXPECT_EQ(StatusOf([&] { fPlugin->Init(); }), 1000);
    EXPECT_EQ(StatusOf([&] { fPlugin->DeInit(); }), 1000);
    EXPECT_EQ(StatusOf([&] { fPlugin->PrepareForUnload(); }), 1000);
    EXPECT_EQ(StatusOfGetData({}), 1000);
    gStatus = kyrStatusOK;
    fPlugin->PrepareForUnload();  // destroys the handle
    fPlugin = nullptr;
    EXPECT_EQ(gSeen, TLines({"init", "deInit", "prepareForUnload", "prepareForUnload"}));
}

TEST_F(ServicesTest, AnErrorOfTheDataEntryForgetsTheOpenInstance) {
    TCIMClass& disk = SchemaBuilder(Schema()).AddClass("Disk", {Key("Name")});
    gStatus = kyrStatusErrorCollectingClass;
    EXPECT_EQ(StatusOfGetData({&disk}), kyrStatusErrorCollectingClass);
    EXPECT_TRUE(disk.EnumerateInstances(false).empty());
    EXPECT_TRUE(fLog.TakeLines().empty());
    delete gOpen;
}

TEST_F(ServicesTest, TheSystemsNameIsKeptOnceItIsKnown) {
    const char* name = nullptr;
    EXPECT_EQ(kyrGetSystemName(&name), kyrStatusNotFound);
    EXPECT_EQ(kyrGetSystemCreationClassName(&name), kyrStatusOK);
    EXPECT_STREQ(name, "MOLTA_ComputerSystem");
    SchemaBuilder schema(Schema());
    TCIMClass& system = schema.AddClass("MOLTA_ComputerSystem", {Key("Name")});
    TCIMInstance& first = schema.AddInstance(system, {{"Name", TCIMValue("host")}});
    EXPECT_EQ(kyrGetSystemName(&name), kyrStatusOK);
    EXPECT_STREQ(name, "host");
    system.RemoveInstance(first);
    const char* again = nullptr;
    EXPECT_EQ(kyrGetSystemName(&again), kyrStatusOK);
    EXPECT_EQ(again, name);
    EXPECT_TRUE(fLog.TakeLines().empty());
}

}  // namespace
