#include <filesystem>

#include "KyrRun.h"

namespace fs = std::filesystem;

// What fixture machines get is in tests/plugins/expected.

TEST(SummaryTest, EachCauseForWhichSomethingIsMissingIsPartOfIt) {
    const TRunResult run = RunKyrWith({"noinit"}, "summary");
    EXPECT_THAT(run, FieldsAre(1, HasSubstr("Disk       not known, as said below\n"), ""));
    EXPECT_THAT(run.out, HasSubstr("\nMissing    Processor, SystemMemory, DiskDrive, NetworkAdapter, MemoryArray,\n"
                                   "           DiskPartition, StorageVolume, FileSystem and 9 more: not collected\n"
                                   "           plugin noinit: its init entry failed: there is no device\n"));
}

TEST(SummaryTest, OrdinaryUserIsToldWhatTheSuperuserMayRead) {
    const std::string nobody = "setpriv --reuid=65534 --regid=65534 --clear-groups env ";
    const TPluginRoot plugins({});
    const TempFolder machine;
    fs::permissions(plugins.Path(), fs::perms(0755));
    fs::permissions(machine.Path(), fs::perms(0755));
    fs::permissions(machine.Write("sys/class/dmi/id/product_serial", "KQ12345\n"), fs::perms(0));
    if (RunShell(nobody + KYR_PROGRAM " --version").status != 0)
        GTEST_SKIP() << "needs a superuser who can become nobody";
    const TRunResult run =
        RunShell(nobody + "KYR_SYSTEM_ROOT=" + machine.Path() + " " KYR_PROGRAM " summary" + plugins.Option());
    EXPECT_THAT(run, FieldsAre(1, HasSubstr("serial number: no permission\n"), ""));
    EXPECT_THAT(
        run.out,
        HasSubstr("ComputerSystem: no permission (/sys/class/dmi/id/product_serial); run\n           as root\n"));
}

TEST(SummaryTest, LinesFitTheWidth) {
    for (const size_t width : {40, 80, 200}) {
        const std::string machine = "KYR_SYSTEM_ROOT=" MACHINES "/server COLUMNS=" + std::to_string(width);
        EXPECT_FALSE(HasLineOver(width, RunKyr("summary", machine).out)) << width;
    }
}
