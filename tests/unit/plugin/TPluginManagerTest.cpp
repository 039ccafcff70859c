#include "kyr/TPluginManager.h"

#include "kyr/TOSSpecific.h"
#include "kyr/TRootObject.h"
#include "unit/plugin/PluginTest.h"

namespace {

class TPluginManagerTest : public PluginTest {};

TEST_F(TPluginManagerTest, APluginIsLoadedOnceInitialisedAndMarkedInTheSchema) {
    InstallAndLoad("good", Class("A") + Class("B"));
    EXPECT_EQ(fLog.TakeLines(), TLines({"3:" + fPath, "2:path NULL", "2:path " + fPath}));
    fManager.FindAndLoadPlugins();
    EXPECT_TRUE(fLog.TakeLines().empty());
    ASSERT_EQ(Count(), 1u);
    EXPECT_EQ(Last().GetPath(), fPath);
    EXPECT_EQ(Last().GetSpecificationPath(), TOSSpecific::BuildSpecificationPath(fPath));
    EXPECT_EQ(NamesOf(Last().GetClassesCollected()), TLines({"A", "B"}));
    for (const char* name : {"A", "B"}) {
        EXPECT_EQ(Find(name)->GetQualifier("PLUGINNAME")->GetValue(), TCIMValue("first"));
        EXPECT_EQ(Find(name)->GetQualifier("PLUGINVERSION")->GetValue(), TCIMValue("1.5"));
    }
    EXPECT_EQ(TRootObject::GetPluginManager()->SearchForPluginByName("first"), &Last());
    EXPECT_EQ(fManager.SearchForPluginByName("First"), nullptr);
    EXPECT_EQ(fManager.GetPluginManagerPath(), ".");
}

TEST_F(TPluginManagerTest, LibrariesStandOneDirectoryBelowTheRoot) {
    for (const char* path : {"librooted.pi.so", "a/liba.pi.so", "a/liba.pi.so.bak", "a/readme", "a/deep/libd.pi.so"})
        fRoot.Write(path, "");
    EXPECT_THAT(TOSSpecific::FindPlugins("."), ::testing::UnorderedElementsAre("./a/liba.pi.so", "./a/liba.pi.so.bak"));
    std::filesystem::current_path("/proc");  // the directory's bare name is not found from here
    EXPECT_TRUE(TOSSpecific::FindPlugins(fRoot.Path()).empty());
    EXPECT_EQ(StatusOf([&] { TPluginManager(fRoot.Path() + "/none").FindAndLoadPlugins(); }), kyrStatusFileSystemError);
}

TEST_F(TPluginManagerTest, ABrokenLibraryIsToldAndPassedOver) {
    fRoot.Write("broken/libbroken.pi.so", "");
    Install("neither", "");
    fManager.FindAndLoadPlugins();
    EXPECT_EQ(Count(), 1u);
    EXPECT_THAT(TakeWords(), ::testing::IsSupersetOf<::testing::Matcher<std::string>>(
                                 {StartsWith("0:ERROR: Failed to load plugin.  Reason: ./broken/libbroken.pi.so: "),
                                  "0:DLL ./broken/libbroken.pi.so failed to initialize properly"}));
}

TEST_F(TPluginManagerTest, TypeAndInitDecideWhetherADocumentIsRead) {
    // The fixture, whether it is initialised, and whether its document is read.
    const std::tuple<std::string, bool, bool> cases[] = {
        {"good", true, true}, {"documentonly", true, true}, {"neither", true, false}, {"initfails", false, false}};
    for (const auto& [fixture, isInitialized, hasDocument] : cases) {
        InstallAndLoad(fixture, Class("Class_" + fixture));
        EXPECT_EQ(Last().IsInitialized(), isInitialized) << fixture;
        EXPECT_EQ(Find("Class_" + fixture) != nullptr, hasDocument) << fixture;
        EXPECT_EQ(StatusOfClasses(), hasDocument ? kyrStatusOK : kyrStatusFail) << fixture;
    }
    EXPECT_EQ(Count(), 4u);
}

TEST_F(TPluginManagerTest, ADocumentThatFailsEndsTheLoadAndNotTheWalk) {
    Install("pair", "<CIM>" + Class("A"));
    EXPECT_EQ(StatusOf([&] { fManager.LoadPlugin(fPath); }), kyrStatusInvalidSpecificationDocument);
    // The second plugin of the library was still waiting for its turn, and the next load forgets it. Its handle and
    // its log entries still point to it.
    ASSERT_EQ(Count(), 1u);
    EXPECT_TRUE(Last().IsInitialized());
    EXPECT_EQ(StatusOfClasses(), kyrStatusFail);
    Install("good", "");
    EXPECT_EQ(StatusOf([&] { fManager.FindAndLoadPlugins(); }), kyrStatusOK);
    EXPECT_EQ(Count(), 2u);
}

TEST_F(TPluginManagerTest, TheMarksMustBeDeclared) {
    TContainer& schema = *fManager.GetSchema();
    schema.RemoveQualifierDecl(*schema.GetQualifierDecl("PLUGINVERSION"));
    InstallAndLoad("good", Class("A"));
    EXPECT_EQ(fLog.TakeLines().back(), "0:Couldn't find PLUGINNAME/PLUGINVERSION qualifier decl");
    EXPECT_EQ(NamesOf(Last().GetClassesCollected()), TLines{"A"});
    EXPECT_EQ(Find("A")->FindQualifier("PLUGINNAME"), nullptr);
    EXPECT_EQ(StatusOf([&] { static_cast<TPluginManager::TPlugin&>(Last()).LoadSpecificationDocument(); }),
              kyrStatusNotFound);
}

TEST_F(TPluginManagerTest, ALibraryMayRegisterTwoPlugins) {
    InstallAndLoad("pair", Class("A"));
    ASSERT_EQ(Count(), 2u);
    const IPlugin& first = *fManager.SearchForPluginByName("first");
    EXPECT_EQ(fManager.SearchForPluginByName("second"), &Last());
    EXPECT_EQ(first.GetPath(), Last().GetPath());
    EXPECT_EQ(NamesOf(first.GetClassesCollected()), TLines{"A"});
    EXPECT_EQ(StatusOfClasses(), kyrStatusFail);  // the document is read for each, and the second time brings nothing
}

}  // namespace
