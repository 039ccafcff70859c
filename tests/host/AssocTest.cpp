#include "KyrRun.h"

namespace {

TRunResult RunAssoc(const std::string& arguments) { return RunKyrWith({"machine"}, "assoc " + arguments); }

}  // namespace

TEST(AssocTest, TiesOfOneKindStandTogether) {
    const char* const ties =
        "nvme0n1\n"
        "  TEST_Disk.DeviceID=\"nvme0n1\"\n"
        "\n"
        "TEST_BasedOn  Antecedent -> Dependent\n"
        "  (not collected)\n"
        "    TEST_Partition.DeviceID=\"gone\"\n"
        "  sda2\n"
        "    TEST_SwapPartition.DeviceID=\"sda2\"\n"
        "\n"
        "TEST_Contains  PartComponent -> GroupComponent\n"
        "  alpha\n"
        "    TEST_Computer.CreationClassName=\"TEST_Computer\",Name=\"alpha\"\n";
    EXPECT_THAT(RunAssoc("'TEST_Disk.DeviceID=\"nvme0n1\"'"), FieldsAre(0, ties, _));
}

TEST(AssocTest, FiltersHoldBackOtherTies) {
    const std::pair<const char*, size_t> cases[] = {
        {"", 3},
        {" --assoc-class cim_component", 0},
        {" --assoc-class test_basedon", 2},
        {" --result-class TEST_Partition", 2},
        {" --result-class TEST_SwapPartition", 1},
        {" --role partcomponent", 1},
        {" --result-role dependent", 2},
        {" --role PartComponent --result-role Dependent", 0},
    };
    for (const auto& [filter, ties] : cases) {
        const TRunResult run = RunAssoc(std::string("TEST_Disk.DeviceID=nvme0n1") + filter);
        EXPECT_THAT(run, FieldsAre(0, _, ties == 0 ? "kyr: no ties\n" : "")) << filter;
        EXPECT_EQ(CountIn(run.out, "\n    TEST_"), ties) << filter;
    }
}

TEST(AssocTest, PathsMayBeWrittenInManyWays) {
    const std::string hostile = "\n  TEST_Mount.Point=\"/mnt\\n\",Source=\"//h/a \"b\", Point=c\"\n";
    const std::string computer = "\n  TEST_Computer.CreationClassName=\"TEST_Computer\",Name=\"alpha\"\n";
    const std::pair<const char*, std::string> cases[] = {
        {"'TEST_Mount.Point=\"/mnt\\n\",Source=\"//h/a \"b\", Point=c\"'", hostile},
        {"'test_mount.source=//h/a \"b\", Point=c,POINT=/mnt\\n'", hostile},
        {"'TEST_Mount.Source=\"//h/a \\\"b\\\", Point=c\"'", hostile},
        {"TEST_Computer", computer},
        {"CIM_System.Name=alpha,CreationClassName=\"TEST_Computer\"", computer},
        {"'TEST_Contains.partcomponent=\"TEST_Disk.DeviceID=\"sda\"\",GroupComponent=TEST_Computer.Name=alpha,"
         "CreationClassName=TEST_Computer'",
         ",PartComponent=\"TEST_Disk.DeviceID=\"sda\"\"\n"},
    };
    for (const auto& [path, found] : cases) EXPECT_THAT(RunAssoc(path).out, HasSubstr(found)) << path;
}

TEST(AssocTest, PathThatNamesNothingIsToldWithWhatThereIs) {
    const std::pair<const char*, std::string> cases[] = {
        {"TEST_Dsk.DeviceID=sda", "unknown class 'TEST_Dsk'; did you mean 'TEST_Disk'?"},
        {"TEST_Disk", "'TEST_Disk' may be any of 2: TEST_Disk.DeviceID=\"nvme0n1\" or TEST_Disk.DeviceID=\"sda\""},
        {"TEST_Disk.DeviceID=sdb",
         "there is no 'TEST_Disk.DeviceID=sdb' among the 2 instances of class TEST_Disk; "
         "did you mean 'TEST_Disk.DeviceID=\"sda\"'?"},
        {"TEST_Disk.DevisID=x", "class TEST_Disk has no key 'DevisID'; did you mean 'DeviceID'? (its keys: DeviceID)"},
        {"TEST_Disk.sda", "'sda' is no key: a path is Class.Key=\"value\""},
        {"TEST_Computer --role x --assoc-class TEST_BasdOn",
         "unknown class 'TEST_BasdOn'; did you mean 'TEST_BasedOn'?"},
        {"TEST_Computer --result-role dependant --assoc-class TEST_BasedOn",
         "unknown role 'dependant'; did you mean 'Dependent'? (roles: Antecedent, Dependent)"},
    };
    for (const auto& [path, message] : cases)
        EXPECT_THAT(RunAssoc(path), FieldsAre(2, "", StartsWith("kyr: " + message + "\n"))) << path;
}
