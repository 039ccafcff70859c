// Classes that are asked for only if what they need is granted, or if they are named: TEST_Probe, the only one of the
// plugin "optional", and TEST_Probed of "halfoptional". TEST_Rare of the latter needs nothing, and must be named.
#include "KyrRun.h"

namespace {

constexpr const char* kNotGranted = "it needs rawio, which is not granted (--grant optional:rawio)";

// Without a sandbox nothing is refused, so that a class that is named is whole.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kRefuses = false;
#else
constexpr bool kRefuses = true;
#endif

TRunResult RunBoth(const std::string& arguments) { return RunKyrWith({"optional", "halfoptional"}, arguments); }

}  // namespace

TEST(OptionalClassTest, IsAskedForIfGrantedOrNamed) {
    const std::string refused = "kyr: plugin optional, class TEST_Probe: partial: " + std::string(kNotGranted) + "\n";
    const struct {
        const char* arguments;
        bool isAsked;
        std::string err;
    } cases[] = {
        {"collect", false, ""},
        {"collect --in-process", false, ""},
        {"collect --sandbox off", false, ""},
        {"show --tree", false, ""},
        {"collect --grant optional:rawio", true, ""},
        {"show probe --grant optional:rawio", true, ""},
        {"show probe", true, kRefuses ? refused : ""},
        {"collect --class TEST_Probe", true, kRefuses ? refused : ""},
        {"get probe.Id", true, kRefuses ? refused : ""},
        {"show probe --in-process", true, ""},
        {"show probe --sandbox off", true, ""},
    };
    for (const auto& [arguments, isAsked, err] : cases) {
        const TRunResult run = RunBoth(arguments);
        EXPECT_THAT(run, FieldsAre(err.empty() ? 0 : 1, _, err)) << arguments;
        EXPECT_EQ(CountIn(run.out, "TEST_Probe\n") + (run.out == "1\n" ? 1 : 0), isAsked ? 1u : 0u) << arguments;
    }
    EXPECT_THAT(RunBoth("show TEST_Kept"), FieldsAre(0, "TEST_Kept\n  Id  1\n", ""));
    EXPECT_THAT(RunBoth("show TEST_Rare").out, "TEST_Rare\n  Id  1\n");
    EXPECT_THAT(RunBoth("collect --also rare").out, HasSubstr("TEST_Rare\n"));
    EXPECT_THAT(RunBoth("collect --also nothing"), FieldsAre(2, "", HasSubstr("kyr: unknown class 'nothing'\n")));
    EXPECT_THAT(RunBoth("show TEST_Kept --grant halfoptional:rawio").out, HasSubstr("TEST_Probed"));
}

// Its plugin is not even loaded, so that it has no name of its own.
TEST(OptionalClassTest, StateTellsThatItIsNotGranted) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/a.xml", granted = folder.Path() + "/b.xml";
    EXPECT_THAT(RunBoth("collect -o " + file), FieldsAre(0, "", ""));
    const std::string json = RunKyr("show --json " + file).out;
    EXPECT_THAT(json, HasSubstr("\"state\": \"complete\""));
    EXPECT_EQ(CountIn(json, "\"state\": \"not asked\""), 4u) << json;
    EXPECT_EQ(CountIn(json, "\"reasonCode\": \"not named\""), 1u) << json;
    EXPECT_EQ(CountIn(json, "\"reasonCode\": \"not granted\""), 3u) << json;
    EXPECT_THAT(json, HasSubstr(kNotGranted));
    EXPECT_THAT(json, HasSubstr("\"name\": \"./optional/liboptional.pi.so\""));
    EXPECT_THAT(RunKyr("show probe " + file), FieldsAre(0, "",
                                                        std::string("kyr: class TEST_Probe: not asked: ") +
                                                            kNotGranted + "\nkyr: there are no instances of probe\n"));
    EXPECT_THAT(RunKyr("show probe --json " + file).status, 0);

    EXPECT_THAT(RunBoth("collect -o " + granted + " --grant optional:rawio").status, 0);
    EXPECT_THAT(RunKyr("diff " + file + " " + file), FieldsAre(0, "no changes\n", ""));
    const auto leftOut = FieldsAre(0, "1 class left out on purpose: Probe\nno changes; 1 class not compared\n", "");
    EXPECT_THAT(RunKyr("diff " + granted + " " + file), leftOut);
    EXPECT_THAT(RunBoth("diff " + granted), leftOut);
    EXPECT_THAT(RunBoth("diff " + granted + " --grant optional:rawio"), FieldsAre(0, "no changes\n", ""));
}
