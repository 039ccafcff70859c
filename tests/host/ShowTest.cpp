#include "KyrRun.h"

namespace {

TRunResult RunOnMachine(const std::string& arguments, const std::string& environment = "") {
    return RunKyrWith({"machine"}, arguments, environment);
}

}  // namespace

TEST(ShowTest, PrintsAsExpected) {
    const std::string all =
        " --class TEST_Computer --class TEST_Disk --class TEST_Mount --class TEST_Partition --class TEST_BasedOn";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"show" + all, "", "show.txt"},
        {"show --references --null --provenance --class TEST_Disk", "40", "show-narrow.txt"},
        {"show --tree" + all, "", "show-tree.txt"},
        {"show --tree" + all, "40", "show-tree-narrow.txt"},
    };
    for (const auto& [arguments, columns, expected] : cases)
        EXPECT_THAT(RunOnMachine(arguments, "COLUMNS=" + columns),
                    FieldsAre(0, AllOf(ReadFile(EXPECTED "/" + expected), Not(HasSubstr(" \n"))), _))
            << expected;
}

TEST(ShowTest, StableLeavesOutWhatChangesByItself) {
    EXPECT_THAT(RunOnMachine("show --class TEST_Disk").out, HasSubstr("Temperature"));
    EXPECT_THAT(RunOnMachine("show --class TEST_Disk --stable").out, Not(HasSubstr("Temperature")));
}

TEST(ShowTest, RawListsAreWhole) {
    EXPECT_THAT(RunOnMachine("show --class TEST_Disk --raw").out,
                AllOf(HasSubstr("  Features      { fpu, vme, de, pse, tsc, "), HasSubstr(", cmov, pat }\n")));
}

TEST(ShowTest, StatesArePrintedOnlyWhenNamed) {
    EXPECT_THAT(RunOnMachine("show").out, Not(HasSubstr("MOLTA_CollectedPlugin")));
    EXPECT_THAT(RunOnMachine("show --class MOLTA_CollectedPlugin").out, HasSubstr("MOLTA_CollectedPlugin"));
}
