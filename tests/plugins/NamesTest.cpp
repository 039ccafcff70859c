#include <sstream>

#include "SavedMachine.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// The lines that begin an instance's class, as "MOLTA_DiskDrive (2)", with blanks between them.
std::string HeadingsIn(const std::string& text) {
    std::istringstream lines(text);
    std::string headings, line;
    while (std::getline(lines, line))
        if (!line.empty() && line[0] != ' ') headings += (headings.empty() ? "" : " ") + line;
    return headings;
}

}  // namespace

TEST(NamesTest, ClassesAndInstancesAreCalledAsPeopleCallThem) {
    const TSavedMachine server("server"), laptop("laptop");
    const std::tuple<const TSavedMachine&, const char*, const char*> cases[] = {
        {server, "disks", "MOLTA_DiskDrive (2)"},
        {server, "DISK_DRIVE", "MOLTA_DiskDrive (2)"},
        {server, "molta-disk-drives", "MOLTA_DiskDrive (2)"},
        {server, "--class hdd", "MOLTA_DiskDrive (2)"},
        {server, "caches", "MOLTA_CacheMemory (32)"},
        {server, "ip-addresses", "MOLTA_IPAddress (7)"},
        {server, "systems", "MOLTA_ComputerSystem"},
        {server, "sda", "MOLTA_DiskDrive"},
        {server, "SDA", "MOLTA_DiskDrive"},
        {server, "/dev/sda1", "MOLTA_DiskPartition"},
        {server, "vg0-root", "MOLTA_StorageVolume"},
        {server, "dm-0", "MOLTA_StorageVolume"},
        {server, "/", "MOLTA_Mount"},
        {server, "bond0.100", "MOLTA_NetworkAdapter"},
        {server, "cpu2", "MOLTA_HardwareThread"},
        {server, "'DiskDrive.DeviceID=\"/dev/sdb\"'", "MOLTA_DiskDrive"},
        {server, "sda sdb sda1", "MOLTA_DiskDrive (2) MOLTA_DiskPartition"},
        {server, "sda disks", "MOLTA_DiskDrive (2)"},
        {server, "vms", "MOLTA_VirtualMachine (3)"},
        {server, "web01 containers", "MOLTA_VirtualMachine MOLTA_HostedContainer (3)"},
        {server, "bmc bays", "MOLTA_ManagementController MOLTA_RedfishHostInterface MOLTA_DriveBay (4)"},
        {server, "sockets", "MOLTA_ListeningSocket (10) MOLTA_UnixListeningSocket (5)"},
        {laptop, "/dev/nvme0n1p3", "MOLTA_DiskPartition"},
        {laptop, "gpus", "MOLTA_DisplayController (2)"},
        {laptop, "screens", "MOLTA_Monitor (2)"},
        {server, "users", "MOLTA_Account (11)"},
        {laptop, "BAT0", "MOLTA_Battery"},
        {laptop, "ssd", "MOLTA_DiskDrive"},
    };
    for (const auto& [machine, names, headings] : cases)
        EXPECT_EQ(HeadingsIn(machine.Show(names).out), headings) << names;
    EXPECT_EQ(CountIn(server.Show("--json sdb").out, "\"path\""), 1u);
}

TEST(NamesTest, WhatCannotBeMeantIsToldWithWhatCan) {
    const TSavedMachine server("server");
    const std::pair<const char*, const char*> cases[] = {
        {"fan1",
         "kyr: 'fan1' may be any of 2: MOLTA_Fan.DeviceID=\"pci0000:00/0000:00:14.0/i2c-0/0-0058/fan1\" or "
         "MOLTA_Fan.DeviceID=\"platform/nct6775.2592/fan1\"\n"},
        {"sdd",
         "kyr: nothing is called 'sdd': no file, no class and no instance; did you mean 'hdd' or 'sda' or 'sdb'?\n"},
        {"annna", "kyr: nothing is called 'annna': no file, no class and no instance; did you mean 'anna'?\n"},
        {"dimms ./disks.xml", "kyr: unexpected argument './disks.xml' (try 'kyr show --help')\n"},
        {"--class sda", "kyr: unknown class 'sda'; did you mean 'hdd' or 'ssd' or 'swap'?\n"},
        {"--tree sda", "kyr: a tree is of classes: --tree takes no name of an instance\n"},
    };
    for (const auto& [arguments, message] : cases)
        EXPECT_THAT(server.Show(arguments), FieldsAre(2, "", message)) << arguments;
    EXPECT_THAT(RunKyr("assoc sdd " + server.File()), FieldsAre(2, "", StartsWith("kyr: nothing is called 'sdd'")));
    EXPECT_THAT(RunKyr("schema memory"), FieldsAre(2, "", HasSubstr("'memory' means several classes: ")));
    EXPECT_THAT(RunKyr("collect ssd -o " + server.Path() + "/x.xml"),
                FieldsAre(2, "", HasSubstr("only whole classes can be saved")));
}

TEST(NamesTest, FilesStayFiles) {
    const TSavedMachine server("server");
    const std::string in = "cd " + server.Path() + "; cp machine.xml disks; " KYR_PROGRAM " ";
    EXPECT_EQ(HeadingsIn(RunShell(in + "show disks sda").out), "MOLTA_DiskDrive");
    EXPECT_EQ(HeadingsIn(RunShell(in + "show disks --class disks").out), "MOLTA_DiskDrive (2)");
    EXPECT_THAT(RunShell(in + "show ./disk"), FieldsAre(3, "", HasSubstr("cannot read the collection '")));
    EXPECT_THAT(RunShell(in + "schema drives machine.xml").out, StartsWith("MOLTA_DiskDrive\n"));
    EXPECT_THAT(RunShell(in + "assoc sda machine.xml").out, StartsWith("ST1200MM0009\n"));
}
