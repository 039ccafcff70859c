#include <gmock/gmock.h>
#include <sys/utsname.h>

#include "KyrRun.h"

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

const std::string kShown = "collect --class TEST_Shown";

}  // namespace

TEST(CollectTest, NamesHostAndKernelOfTheRunningMachine) {
    utsname name{};
    ASSERT_EQ(uname(&name), 0);
    const TRunResult run = RunKyr("collect --class MOLTA_OperatingSystem");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(std::string("  CSName               ") + name.nodename + "\n"));
    EXPECT_THAT(run.out, HasSubstr(std::string("  KernelRelease        ") + name.release + "\n"));
}

TEST(CollectTest, MachineOfWhichNothingCanBeReadStillHasItsKeys) {
    const TempFolder nothing;
    const TRunResult run = RunKyr("collect", "KYR_SYSTEM_ROOT=" + nothing.Path());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("\n"
                                   "  CreationClassName  MOLTA_ComputerSystem\n"
                                   "  Name               localhost\n\n"));
}

TEST(CollectTest, HostileTextIsMadeVisible) {
    TempFolder machine;
    machine.Write("sys/class/dmi/id/product_name", "a\x1b[31m\"<b>\"\t\xff\xc3\xa4\xe2\x80\xaez\n");
    machine.Write("sys/class/dmi/id/product_family", std::string(65536, 'x'));
    machine.Write("proc/sys/kernel/hostname", "\xc0\x80\r\n");
    const TRunResult run = RunKyr("collect", "KYR_SYSTEM_ROOT=" + machine.Path());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("  ProductName        a\\x1B[31m\"<b>\"\\t\\xFF\xc3\xa4\\u202Ez\n"));
    EXPECT_THAT(run.out, HasSubstr("  ProductFamily      " + std::string(65536, 'x') + "\n"));
    EXPECT_THAT(run.out, HasSubstr("  Name               \\xC0\\x80\n"));
}

TEST(CollectTest, DisplaysValuesByTheirQualifiers) {
    const TPluginRoot root({"shown"});
    const TRunResult run = RunKyr(kShown + root.Option());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out,
              "TEST_Shown (2)\n"
              "  Id      1\n"
              "  Mask    00AB\n"
              "  Modes   Fast, Slow, 7\n"
              "  Moment  2024-12-31 23:59:58 -03:30\n"
              "  Odd     -5\n"
              "  Size    1.5 Kilobytes\n"
              "  Span    1 day 2 hours 3 minutes 4 seconds\n"
              "\n"
              "  Id      2\n");
}

TEST(CollectTest, RawGivesPlainValues) {
    const TPluginRoot root({"shown"});
    const TRunResult run = RunKyr(kShown + " --raw" + root.Option());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("  Mask    171\n"
                                   "  Modes   { 2, 1, 7 }\n"
                                   "  Moment  20241231235958.000000-210\n"
                                   "  Odd     -5\n"
                                   "  Size    1536\n"
                                   "  Span    00000001020304.000000:000\n"));
}

TEST(CollectTest, ClassStandsForItsSubclassesToo) {
    const TRunResult run = RunKyr("collect --class cim_system --class CIM_Product");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("MOLTA_ComputerSystem\n"));
    EXPECT_THAT(run.out, HasSubstr("MOLTA_ORQProduct\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("MOLTA_OperatingSystem")));
}

TEST(CollectTest, ReferenceToWhatWasNotCollectedIsStillPrinted) {
    const TRunResult run = RunKyrOn("virtual", "collect --references --class MOLTA_InstalledOS");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("  GroupComponent  MOLTA_ComputerSystem.CreationClassName="
                                   "\"MOLTA_ComputerSystem\",Name=\"builder\"\n"));
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
