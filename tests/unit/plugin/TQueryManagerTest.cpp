#include "kyr/TQueryManager.h"

#include "kyr/TRootObject.h"
#include "unit/FakePlugin.h"
#include "unit/plugin/PluginTest.h"

namespace {

class TQueryManagerTest : public PluginTest {
protected:
    /// Runs a query against the schema and returns what the plugins were asked, and what went wrong.
    TLines Query(const TLines& classNames = {}) {
        fLog.TakeLines();
        TRootObject::GetQueryManager()->RunQuery(fManager.GetSchema(), classNames);
        return TakeWords();
    }
    size_t CountOf(const std::string& name) { return Find(name)->EnumerateInstances(false).size(); }
};

TEST_F(TQueryManagerTest, ClassesAreAskedForUntilTheyHaveInstances) {
    InstallAndLoad("good", Class("A") + Class("B"));
    fLog.TakeLines();
    TRootObject::GetQueryManager()->RunQuery(fManager.GetSchema(), {});
    EXPECT_EQ(fLog.TakeLines(),
              TLines({"3:Asking plugin first for A", "3:Asking plugin first for B", "2:asked for A B"}));
    EXPECT_EQ(CountOf("A"), 1u);
    EXPECT_EQ(Query(), TLines());
    Find("B")->RemoveInstance(*Find("B")->EnumerateInstances(false)[0]);
    EXPECT_EQ(Query(), TLines{"2:asked for B"});
}

TEST_F(TQueryManagerTest, QualifiersAndFilterChooseTheClasses) {
    InstallAndLoad("good", Class("Base") + Class("Derived", "", " SUPERCLASS=\"Base\"") +
                               Class("Abstract", Qualifier("ABSTRACT")) + Class("Left", Qualifier("DONTCOLLECT")) +
                               Class("Taken", Qualifier("DONTCOLLECT", "false")));
    const std::pair<TLines, TLines> cases[] = {
        {{"None"}, {}},
        {{"base"}, {}},
        {{"Abstract", "Left"}, {}},
        {{"Derived"}, {"2:asked for Derived"}},
        {{"Base"}, {"2:asked for Base"}},  // the subclass's instance does not count
        {{}, {"2:asked for Taken"}},
    };
    for (const auto& [filter, asked] : cases) EXPECT_EQ(Query(filter), asked) << ::testing::PrintToString(filter);
}

TEST_F(TQueryManagerTest, AssociationsHaveAPassOfTheirOwn) {
    InstallAndLoad("pair", Class("A") + Class("Link", Qualifier("ASSOCIATION")) + Class("B"));
    const std::string second = "0:Plugin second threw exception kyrStatusFail";  // it has no classes
    EXPECT_EQ(Query(), TLines({"2:asked for A B", second, "2:asked for Link", second}));
}

TEST_F(TQueryManagerTest, AnErrorKeepsWhatWasStoredBefore) {
    InstallAndLoad("good", Class("A") + Class("Fixture_Error") + Class("Fixture_Keyless"));
    EXPECT_EQ(Query({"A", "Fixture_Error"}),
              TLines({"2:asked for A Fixture_Error",
                      "0:kyrAddClass: GetClass(Fixture_Unknown) threw exception kyrStatusNotFound",
                      "0:Plugin first threw exception kyrStatusErrorCollectingClass"}));
    EXPECT_EQ(CountOf("A"), 1u);
    EXPECT_EQ(Query({"Fixture_Keyless"}),
              TLines({"2:asked for Fixture_Keyless", "0:Instance Fixture_Keyless: key property Name is NULL",
                      "0:kyrAddClass: CIM class Fixture_Keyless threw exception kyrStatusInvalidInstance",
                      "0:Plugin first threw exception kyrStatusInvalidInstance"}));
    EXPECT_EQ(CountOf("Fixture_Keyless"), 0u);
}

TEST_F(TQueryManagerTest, InstancesGoToTheContainerOfTheHost) {
    InstallAndLoad("good", Class("A"));
    TContainer other;
    const TCIMClass& copy = SchemaBuilder(other).AddClass("A", {Key("Name")});
    TRootObject::GetQueryManager()->RunQuery(&other, {});
    EXPECT_EQ(copy.EnumerateInstances(false).size(), 1u);
    EXPECT_EQ(CountOf("A"), 0u);
}

TEST_F(TQueryManagerTest, APluginThatDidNotInitialiseIsAskedForWhatItLacks) {
    InstallAndLoad("documentonly", Class("A"));
    EXPECT_EQ(Query(), TLines());  // only collectors are asked
    InstallAndLoad("initfails", Class("B"));
    EXPECT_EQ(Query(), TLines(2, "0:Plugin first threw exception kyrStatusFail"));
}

TEST_F(TQueryManagerTest, APluginWithoutTheQueryInterfaceIsALineInTheLog) {
    fManager.GetPluginsContainer().push_back(boost::shared_ptr<IPlugin>(new FakePlugin("fake")));
    const TLines pass = {"0:Plugin fake doesn't support the IPluginBasicQueryCallbacks.",
                         "0:Plugin fake threw exception kyrStatusInvalidPlugin"};
    EXPECT_EQ(Query(), TLines({pass[0], pass[1], pass[0], pass[1]}));
}

}  // namespace
