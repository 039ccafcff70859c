#include <gmock/gmock.h>

#include <regex>

#include "KyrRun.h"

using ::testing::HasSubstr;

namespace {

// What kyr makes of the file for each choice of classes: exit status, and standard error.
std::string Judge(const std::string& file) {
    std::string judgement;
    for (const char* choice : {"", " --class TEST_Kept", " --class TEST_First", " --class TEST_Shown"}) {
        const TRunResult run = RunKyr("show " + file + choice);
        judgement += choice + std::string(": ") + std::to_string(run.status) + "\n" + run.err;
    }
    return judgement;
}

}  // namespace

TEST(ReasonsTest, WordingInASavedFileDecidesNothing) {
    const TPluginRoot root({"givesup", "noinit", "datacrash", "shown"});
    const std::string file = root.Path() + "/a.xml";
    for (const std::string choice : {"", " --class TEST_Lost --class TEST_Kept", " --class MOLTA_ComputerSystem"}) {
        ASSERT_EQ(RunKyr("collect -o " + file + choice + root.Option()).status, 1);
        const std::string expected = Judge(file);
        const std::regex reason("(NAME=\"Reason\" TYPE=\"string\"><VALUE>)[^<]*");
        const std::string reworded = root.Write("b.xml", std::regex_replace(ReadFile(file), reason, "$1Leider nein"));
        std::string found = Judge(reworded);
        EXPECT_THAT(found, HasSubstr("kyr: plugin noinit: refused: Leider nein\n"));
        const std::regex line("(kyr: plugin [^:]*: [a-z ]+: )[^\n(]*");  // up to the names of classes
        EXPECT_EQ(std::regex_replace(found, line, "$1"), std::regex_replace(expected, line, "$1")) << choice;
    }
}

TEST(ReasonsTest, FilesWithoutCodesAreStillRead) {
    const std::string told =
        "kyr: plugin givesup: partial: its answer ended with kyrStatusErrorCollectingClass (class TEST_Kept)\n"
        "kyr: plugin noinit: refused: its init entry failed: there is no device\n";
    const TRunResult run = RunKyr("show " SAVED "/without-reason-codes.xml.gz --class TEST_Kept");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "TEST_Kept\n  Id  1\n");
    EXPECT_EQ(run.err, "kyr: plugin datacrash: partial: SIGSEGV in its data entry at class TEST_First\n" + told);
    EXPECT_THAT(RunKyr("show " SAVED "/without-reason-codes.xml.gz --json").out, HasSubstr("\"reasonCode\": null"));
}

TEST(ReasonsTest, JsonAndFilesHaveTheCode) {
    const TPluginRoot root({"givesup", "noinit", "datacrash", "pair", "denied"});
    const std::string file = root.Path() + "/a.xml";
    const std::string live = RunKyr("collect --json" + root.Option()).out;
    RunKyr("collect -o " + file + root.Option());
    const std::string saved = RunKyr("show --json " + file).out;
    for (const char* word :
         {"data call failed", "init failed", "crashed", "no class of its own", "plugins incomplete"}) {
        const std::string member = std::string("\"reasonCode\": \"") + word + "\"";
        EXPECT_THAT(live, HasSubstr(member));
        EXPECT_THAT(saved, HasSubstr(member));
    }
}
