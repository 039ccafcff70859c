#include <sys/utsname.h>

#include "KyrRun.h"

// Its path comes before that of the system plugin.
TEST(CollectTest, ComputerSystemIsCollectedFirstWhateverWasAskedFor) {
    const TPluginRoot root({"naming"});
    for (const std::string how : {"", "--in-process ", "--json "}) {
        const std::string collect = "collect --class TEST_Kept " + how + root.Option();
        const TRunResult run = RunKyr(collect, "KYR_SYSTEM_ROOT=" MACHINES "/server");
        EXPECT_THAT(run, FieldsAre(0, HasSubstr("db01.example.net"), "")) << how;
        EXPECT_THAT(run.out, Not(HasSubstr("MOLTA_ComputerSystem")));
    }
    const std::string file = root.Path() + "/a.xml";
    RunKyr("collect --class TEST_Kept -o " + file + root.Option());
    EXPECT_EQ(RunKyr("show --class MOLTA_ComputerSystem " + file).out, "");
}

TEST(CollectTest, NamesHostAndKernelOfTheRunningMachine) {
    utsname name{};
    ASSERT_EQ(uname(&name), 0);
    const std::string host = name.nodename, kernel = name.release;
    EXPECT_THAT(RunKyr("collect --class MOLTA_OperatingSystem --keys"),
                FieldsAre(0,
                          AllOf(HasSubstr("  CSName               " + host + "\n"),
                                HasSubstr("  KernelRelease        " + kernel + "\n")),
                          _));
}

TEST(CollectTest, MachineOfWhichNothingCanBeReadStillHasItsKeys) {
    const TempFolder nothing;
    const char* const keys = "\n  Name  localhost\n\n";
    EXPECT_THAT(RunKyr("collect", "KYR_SYSTEM_ROOT=" + nothing.Path()), FieldsAre(1, HasSubstr(keys), _));
}

TEST(CollectTest, HostileTextIsMadeVisible) {
    TempFolder machine;
    machine.Write("sys/class/dmi/id/product_name", "a\x1b[31m\"<b>\"\t\xff\xc3\xa4\xe2\x80\xaez\n");
    machine.Write("sys/class/dmi/id/product_family", std::string(65536, 'y'));
    machine.Write("proc/sys/kernel/hostname", "\xc0\x80\r\n");
    const TRunResult run = RunKyr("collect --class MOLTA_ComputerSystem", "KYR_SYSTEM_ROOT=" + machine.Path());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("  ProductName    a\\x1B[31m\"<b>\"\\t\\xFF\xc3\xa4\\u202Ez\n"));
    EXPECT_THAT(run.out, HasSubstr("  ProductFamily  " + std::string(65536, 'y') + "\n"));
    EXPECT_THAT(run.out, HasSubstr("  Name           \\xC0\\x80\n"));
}

TEST(CollectTest, DisplaysValuesByTheirQualifiers) {
    const char* const shown =
        "TEST_Shown (2)\n"
        "  Id      1\n"
        "  Mask    00AB\n"
        "  Modes   Fast, Slow, 7\n"
        "  Moment  2024-12-31 23:59:58 -03:30\n"
        "  Odd     -5\n"
        "  Size    1.5 Kilobytes\n"
        "  Span    1 day 2 hours 3 minutes 4 seconds\n"
        "\n"
        "  Id      2\n";
    EXPECT_THAT(RunKyrWith({"shown"}, "collect --class TEST_Shown"), FieldsAre(0, shown, _));
}

TEST(CollectTest, RawGivesPlainValues) {
    const char* const shown =
        "  Mask    171\n"
        "  Modes   { 2, 1, 7 }\n"
        "  Moment  2024-12-31T23:59:58-03:30\n"
        "  Odd     -5\n"
        "  Size    1536\n"
        "  Span    P1DT2H3M4S\n";
    EXPECT_THAT(RunKyrWith({"shown"}, "collect --class TEST_Shown --raw"), FieldsAre(0, HasSubstr(shown), _));
}

TEST(CollectTest, ClassStandsForItsSubclassesToo) {
    EXPECT_THAT(RunKyr("collect --class cim_system --class CIM_Product"),
                FieldsAre(0,
                          AllOf(HasSubstr("MOLTA_ComputerSystem\n"), HasSubstr("MOLTA_ORQProduct\n"),
                                Not(HasSubstr("MOLTA_OperatingSystem"))),
                          _));
}

TEST(CollectTest, ReferenceToWhatWasNotCollectedIsStillPrinted) {
    EXPECT_THAT(RunKyrOn("virtual", "collect --references --class MOLTA_InstalledOS"),
                FieldsAre(0,
                          HasSubstr("  GroupComponent  MOLTA_ComputerSystem.CreationClassName="
                                    "\"MOLTA_ComputerSystem\",Name=\"builder\"\n"),
                          _));
}

TEST(CollectTest, PartOfAFileIsWhatThatPartOfTheMachineIs) {
    const TempFolder folder;
    const TPluginRoot good({"machine"}), bad({"denied"});
    const std::string all = folder.Path() + "/all.xml", here = folder.Path() + "/here.xml";
    const std::string part = folder.Path() + "/part.xml", choice = " --class CIM_System --stable -o ";
    EXPECT_EQ(RunKyr("collect -o " + all + good.Option()).status, 0);
    EXPECT_EQ(RunKyr("collect" + choice + here + good.Option()).status, 0);
    EXPECT_EQ(RunKyr("collect " + all + choice + part).status, 0);
    EXPECT_EQ(ReadFile(part), ReadFile(here));
    EXPECT_THAT(RunKyr("assoc MOLTA_OperatingSystem " + part).err, HasSubstr("there is no instance of class"));
    EXPECT_EQ(RunKyr("collect -o " + all + bad.Option()).status, 1);
    EXPECT_EQ(RunKyr("collect " + all + choice + part).status, 1) << "a plugin's own fault was forgotten";
}
