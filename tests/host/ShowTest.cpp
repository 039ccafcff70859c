#include "KyrRun.h"
#include "base/NaturalOrder.h"

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

TEST(ShowTest, OfAllInstancesThoseOfWhichThereAreManyAreCounted) {
    const std::string all = RunOnMachine("show").out;
    EXPECT_THAT(all, AllOf(testing::StartsWith("MOLTA_ComputerSystem\n"), Not(HasSubstr("\nTEST_BasedOn"))));
    EXPECT_THAT(all, testing::ContainsRegex("\nAssociations: [0-9]+ instances; see show --references\n$"));
    EXPECT_THAT(RunOnMachine("show --references").out, Not(HasSubstr("Associations: ")));
    EXPECT_THAT(RunOnMachine("show based-on").out, StartsWith("TEST_BasedOn (7)\n"));
    EXPECT_THAT(RunOnMachine("show --class TEST_Computer --keys").out,
                HasSubstr("\n  CreationClassName  TEST_Computer\n  Name               alpha\n"));
}

TEST(ShowTest, NamesOfWhichThereIsNothingAreTold) {
    const char* const none = "kyr: there are no instances of missing-sources\n";
    EXPECT_THAT(RunOnMachine("show TEST_Disk missing-sources --stable 2>&1 >/dev/null"), FieldsAre(0, none, ""));
}

TEST(ShowTest, OrderIsThatInWhichPeopleCount) {
    const std::vector<const char*> lists[] = {
        {"0000:09:00.0", "0000:0a:00.0", "0000:10:00.0"},
        {"10.0.0.2", "10.0.0.10", "192.0.2.1"},
        {"/dev/sda", "/dev/sda1", "/dev/sda2", "/dev/sda10", "/dev/sdb", "/dev/sdaa"},
        {"bash", "sed", "vim", "zsh"},
        {"cpu0/index9/a", "cpu0/index10/a", "cpu0/indexa", "cpu0/x"},
        {"cpu01", "cpu1", "cpu2", "cpu2/index0", "cpu10"},
        {"enp3s10", "enp10s3", "eth", "eth0"},
        {"nvme0n1", "nvme0n1p1", "nvme1n1"},
    };
    for (const std::vector<const char*>& ordered : lists)
        for (size_t i = 1; i < ordered.size(); ++i) {
            EXPECT_TRUE(IsNaturallyLess(ordered[i - 1], ordered[i])) << ordered[i - 1] << ' ' << ordered[i];
            EXPECT_FALSE(IsNaturallyLess(ordered[i], ordered[i - 1])) << ordered[i - 1] << ' ' << ordered[i];
        }
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
