#include "KyrRun.h"

namespace {

constexpr const char* kLibrary = FIXTURE_PLUGINS "/careless/libcareless.pi.so";

// Each rule with what it says of the careless plugin.
constexpr const char* kOfInstances[] = {
    "TEST_User.Shell: it is NULL, and nothing says why",
    "[R04]",
    "'it has no shell' is not of the form 'property: text'",
    "the class has no property 'Shel'",
    "name one of its properties; did you mean 'Shell'?",
    "'gone' is no reason that is known",
    "[R05]",
    "TEST_User: two instances have the same keys (TEST_User.Id=\"root\") [R06]",
    "TEST_UserHome.User: there is no 'TEST_User.Id=\"rot\"', to which it refers",
    "TEST_User.State: '4464' is not in ValueMap",
    "TEST_User.Model: blanks stand around the text",
};

}  // namespace

TEST(RunCheckTest, WhatALibraryReportsIsCheckedInTwoRuns) {
    const TRunResult run = RunKyr(std::string("check ") + kLibrary);
    EXPECT_EQ(run.status, 1) << run.err;
    for (const char* text : kOfInstances) EXPECT_THAT(run.out, HasSubstr(text));
    EXPECT_THAT(run.out, HasSubstr("TEST_User.Reads: a second run gave another value, and it is not Volatile"));
    EXPECT_THAT(run.out, HasSubstr("TEST_User: a run that was asked for fewer classes does not report the instance "
                                   "(TEST_User.Id=\"guest\") [R11]"));
    EXPECT_THAT(run.out,
                HasSubstr("no instance of TEST_Group, no log line says why, and the library does not name it [R03]"));
}

TEST(RunCheckTest, PluginWithoutMistakesIsClean) {
    const TRunResult run = RunKyr(std::string("check ") + kLibrary, "KYR_TEST_CLEAN=1");
    EXPECT_THAT(run.out, Not(HasSubstr("[R")));
}

TEST(RunCheckTest, SavedCollectionIsCheckedWithoutRuns) {
    const TPluginRoot root({"careless"});
    const std::string file = root.Path() + "/a.xml";
    RunKyr("collect -o " + file + root.Option());
    const TRunResult run = RunKyr("check " + file);
    for (const char* text : kOfInstances) EXPECT_THAT(run.out, HasSubstr(text));
    EXPECT_THAT(run.out, Not(ContainsRegex("R03|R10")));
}

// Of what was not collected nobody knows whether it is there.
TEST(RunCheckTest, ReferenceToAClassThatWasLeftOutIsNone) {
    const TPluginRoot root({"careless"});
    const std::string file = root.Path() + "/a.xml";
    RunKyr("collect --class TEST_UserHome -o " + file + root.Option());
    EXPECT_EQ(RunKyr("check " + file).out, "");
}

TEST(RunCheckTest, WhatAPluginDoesWrongIsToldAsCollectTellsIt) {
    const struct {
        const char *plugin, *mistake, *text;
        int status;
    } kRuns[] = {
        {"mistaken", "WrongCall",
         "TEST_User could not be collected: TEST_User.Uid: declared uint64, given by kyrAddUint32Property [R01]", 1},
        {"mistaken", "Ignored", "TEST_User is not complete: TEST_User.Uid: declared uint64, given by ", 1},
        {"mistaken", "TextForNumber", "TEST_User.Uid: 'lots' was given for a uint64, but is no whole number [R16]", 1},
        {"mistaken", "NoSuchMonth",
         "TEST_User.Since: \"20261301000000.000000+000\" is no date that exists: month 13 (TEST_User.Id=\"root\") "
         "[R18]",
         1},
        {"newminor", "", "the plugin newminor: it was built for version 1.1 of the plugin interface, and ", 0},
        {"noversion", "", "the plugin noversion: it does not say for which version of the plugin interface ", 0},
        {"newmajor", "",
         "TEST_Kept, TEST_Lost could not be collected: it was built for version 2.0 of the plugin interface, ", 1},
#if !defined(__SANITIZE_ADDRESS__)  // with which plugins have no sandbox that asks for grants
        {"trespassing", "", "[R15]", 0},
#endif
    };
    for (const auto& each : kRuns) {
        const std::string plugin = each.plugin;
        const TRunResult run = RunKyr("check " FIXTURE_PLUGINS "/" + plugin + "/lib" + plugin + ".pi.so",
                                      std::string("KYR_TEST_MISTAKE=") + each.mistake);
        EXPECT_EQ(run.status, each.status) << plugin << run.out << run.err;
        EXPECT_THAT(run.out, AllOf(HasSubstr(each.text), Not(HasSubstr("not a number either"))));
    }
}

TEST(RunCheckTest, CollectionsOfOurMachinesAreClean) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/a.xml";
    for (const char* machine : {"server", "laptop", "virtual", "nvme", "container", "empty", "unreadable"}) {
        RunKyrOn(machine, "collect -o " + file);
        EXPECT_EQ(RunKyr("check --fail-on warning " + file).status, 0) << machine;
    }
}
