#include <gmock/gmock.h>

#include "KyrRun.h"

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

TRunResult RunOnMachine(const std::string& arguments, const std::string& environment = "") {
    static const TPluginRoot root({"machine"});
    return RunKyr(arguments + root.Option(), environment);
}

}  // namespace

TEST(ShowTest, PrintsAsExpected) {
    const std::string all =
        " --class TEST_Computer --class TEST_Disk --class TEST_Mount --class TEST_Partition --class TEST_BasedOn";
    const struct {
        std::string arguments;
        const char* columns;
        const char* expected;
    } cases[] = {
        {"show" + all, "", "show.txt"},
        {"show --references --null --provenance --class TEST_Disk", "40", "show-narrow.txt"},
        {"show --tree" + all, "", "show-tree.txt"},
        {"show --tree" + all, "40", "show-tree-narrow.txt"},
    };
    for (const auto& c : cases) {
        const TRunResult run = RunOnMachine(c.arguments, std::string("COLUMNS=") + c.columns);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out, ReadFile(std::string(EXPECTED "/") + c.expected)) << c.expected;
        EXPECT_THAT(run.out, Not(HasSubstr(" \n"))) << c.expected;
    }
}

TEST(ShowTest, StableLeavesOutWhatChangesByItself) {
    EXPECT_THAT(RunOnMachine("show --class TEST_Disk").out, HasSubstr("Temperature"));
    EXPECT_THAT(RunOnMachine("show --class TEST_Disk --stable").out, Not(HasSubstr("Temperature")));
}

TEST(ShowTest, RawListsAreWhole) {
    EXPECT_THAT(RunOnMachine("show --class TEST_Disk --raw").out,
                HasSubstr("  Features      { fpu, vme, de, pse, tsc, "));
    EXPECT_THAT(RunOnMachine("show --class TEST_Disk --raw").out, HasSubstr(", cmov, pat }\n"));
}

TEST(ShowTest, StatesArePrintedOnlyWhenNamed) {
    EXPECT_THAT(RunOnMachine("show").out, Not(HasSubstr("MOLTA_CollectedPlugin")));
    EXPECT_THAT(RunOnMachine("show --class MOLTA_CollectedPlugin").out, HasSubstr("MOLTA_CollectedPlugin"));
}
