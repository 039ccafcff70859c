#include "SavedMachine.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr const char* kMount = " on /  ext4[^\n]* MOLTA_Mount\n";
constexpr const char* kDisk = "ST1200MM0009  sda, 1.1 Terabytes  MOLTA_DiskDrive\n";

/// The lines of a tree without the details and classes of instances, behind a line break.
std::string NamesIn(const std::string& tree) {
    std::string names = "\n";
    for (size_t at = 0, end; at < tree.size(); at = end + 1) {
        end = tree.find('\n', at);
        names += tree.substr(at, std::min(tree.find("  ", tree.find_first_not_of(' ', at)), end) - at) + '\n';
    }
    return names;
}

}  // namespace

// Which disk holds the root of the file system?
TEST(TreeTest, WayFromAMountToItsDiskIsToldInOneStep) {
    const TSavedMachine server("server");
    EXPECT_THAT(server.Assoc("/ --deep").out,
                ContainsRegex(std::string("  root .* MOLTA_FileSystem\n.*MOLTA_StorageVolume\n.*sda2, .*") + kDisk));
    EXPECT_THAT(server.Assoc("sda --deep").out, ContainsRegex(std::string("On it depend\n.*/boot/efi .*") + kMount));
    EXPECT_THAT(server.Show("--tree --to /").out, AllOf(StartsWith("db01.example.net  "), Not(HasSubstr("Processor")),
                                                        ContainsRegex(std::string(kDisk) + ".*" + kMount)));
    EXPECT_THAT(server.Show("--tree disks mounts").out, ContainsRegex(std::string("\n  /dev/mapper/vg0-root") + kMount))
        << "a tie through classes that are not chosen is kept";
}

TEST(TreeTest, BranchHasAllThatLeadsToAnInstanceAndAllBelowIt) {
    const TSavedMachine server("server"), nvme("nvme");
    const std::string some = "--tree disks partitions volumes mounts --to ";
    const std::string onVolumes =
        "      /dev/mapper/vg0-root\n"
        "        /dev/mapper/vg0-root on /\n"
        "      /dev/mapper/vg0-swap\n"
        "      /dev/mapper/vg0-var--lib\n"
        "        /dev/mapper/vg0-var--lib on /srv/db\n"
        "        /dev/mapper/vg0-var--lib on /var/lib\n";
    const std::string ofFirst = "\nST1200MM0009\n  Linux RAID\n    /dev/md0\n";
    const std::string ofSecond = "ST1200MM0009\n  Linux RAID\n    /dev/md0 (above)\n";
    const std::tuple<const TSavedMachine&, const char*, std::string> cases[] = {
        {server, "/", ofFirst + "      /dev/mapper/vg0-root\n        /dev/mapper/vg0-root on /\n" + ofSecond},
        {server, "/srv/db",
         ofFirst + "      /dev/mapper/vg0-var--lib\n        /dev/mapper/vg0-var--lib on /srv/db\n" + ofSecond},
        {server, "/dev/md0", ofFirst + onVolumes + ofSecond},
        {server, "sdb", "\nST1200MM0009\n  EFI System\n  Linux RAID\n    /dev/md0\n" + onVolumes},
        {nvme, "/srv/pg",
         "\nSAN LUN\n  /dev/mapper/mpatha\n    /dev/mapper/mpatha-part1\n      /dev/mapper/mpatha-part1 on /srv/pg\n"
         "SAN LUN\n  /dev/mapper/mpatha (above)\n"},
    };
    for (const auto& [machine, target, branch] : cases)
        EXPECT_EQ(NamesIn(machine.Show(some + target).out), branch) << target;
    EXPECT_THAT(server.Show("--tree --to MOLTA_InstalledOS"),
                FieldsAre(2, "", StartsWith("kyr: 'MOLTA_InstalledOS' is an association, ")));
}

TEST(TreeTest, TiesThroughClassesThatAreNotChosenAreKept) {
    const TSavedMachine server("server"), nvme("nvme");
    const std::tuple<const TSavedMachine&, const char*, std::string> cases[] = {
        {server, "mount disks --to /var/lib",
         "\nST1200MM0009\n  /dev/mapper/vg0-var--lib on /var/lib\n"
         "ST1200MM0009\n  /dev/mapper/vg0-var--lib on /var/lib (above)\n"},
        {server, "MOLTA_ComputerSystem disks", "\ndb01.example.net\n  ST1200MM0009\n  ST1200MM0009\n"},
        {server, "partitions MOLTA_SwapArea",
         "\nEFI System\nLinux RAID\n  Swap area /dev/dm-1\nEFI System\nLinux RAID\n  Swap area /dev/dm-1 (above)\n"},
        {nvme, "disks mounts --to /srv/pg",
         "\nSAN LUN\n  /dev/mapper/mpatha-part1 on /srv/pg\nSAN LUN\n  /dev/mapper/mpatha-part1 on /srv/pg (above)\n"},
    };
    for (const auto& [machine, chosen, tree] : cases)
        EXPECT_EQ(NamesIn(machine.Show(std::string("--tree ") + chosen).out), tree) << chosen;
}

TEST(TreeTest, OrderIsThatInWhichPeopleCount) {
    const TSavedMachine server("server"), laptop("laptop");
    EXPECT_THAT(
        NamesIn(server.Show("--tree cores threads").out),
        StartsWith(
            "\nsocket0/core0\n  cpu0\n  cpu8\nsocket0/core8\n  cpu1\n  cpu9\nsocket0/core16\n  cpu2\n  cpu10\n"));
    EXPECT_THAT(
        NamesIn(laptop.Show("--tree caches").out),
        testing::ContainsRegex("CPU 0-1\nL1 data cache of CPU 2-3\n.*L1 instruction .*L2 .*L3 cache of CPU 0-7\n$"));
}

TEST(DependenciesTest, LeadFromTheWholeToWhatItIsMadeOfAndRepeatWhatIsShared) {
    const TSavedMachine server("server");
    const std::string cards =
        "  eno1np0\n"
        "    Ethernet controller: Intel Corporation Ethernet Controller X710 for 10GbE SFP+\n"
        "      PCI bridge: Advanced Micro Devices, Inc. [AMD] Starship/Matisse GPP Bridge\n"
        "      Onboard LAN 1\n"
        "  eno2np1\n"
        "    Ethernet controller: Intel Corporation Ethernet Controller X710 for 10GbE SFP+\n"
        "      PCI bridge: Advanced Micro Devices, Inc. [AMD] Starship/Matisse GPP Bridge (above)\n"
        "      Onboard LAN 2\n";
    EXPECT_THAT(NamesIn(server.Assoc("bond0 --deep").out),
                AllOf(StartsWith("\nbond0 (bond)\n\nIt depends on\n" + cards + "\nOn it depend\n  bond0.100 (vlan)\n"),
                      HasSubstr("\n  192.0.2.20/24 on bond0\n"), Not(ContainsRegex("On it depend.*eno"))));
    EXPECT_THAT(NamesIn(server.Assoc("eno1np0 --deep").out),
                AllOf(Not(ContainsRegex("It depends on.*bond0.*On it depend")),
                      ContainsRegex("On it depend\n  bond0 \\(bond\\)\n    bond0.100")));
    const char* const controller = " Serial Attached SCSI controller: [^\n]*";
    EXPECT_THAT(NamesIn(server.Assoc("/ --deep").out),
                ContainsRegex(std::string("ST1200MM0009\n *Bay Slot00\n *Enclosure SAS3x28\n *") + controller +
                              " \\(IOC\\)\n *PCI bridge: [^\n]*\n *SLOT3 PCI-E 4.0 X8\n"
                              " *Linux RAID\n *ST1200MM0009\n *Bay Slot01\n *Enclosure SAS3x28 \\(above\\)\n *" +
                              controller + " \\(IOC\\) \\(above\\)\n$"));
    EXPECT_THAT(NamesIn(server.Assoc("db01.example.net --deep").out), Not(HasSubstr("\n  eno1np0 (above)")))
        << "what stands below it by way of others is not repeated";
}

TEST(TreeTest, LineHasNoTwoNumbersOfOneKind) {
    const TSavedMachine server("server");
    const std::pair<const char*, const char*> cases[] = {
        {"MOLTA_SystemMemory", "Memory of the system  503.7 Gigabytes, 8 Modules  MOLTA_SystemMemory\n"},
        {"cores", "socket0/core0  4105 MegaHertz  MOLTA_ProcessorCore\n"},
        {"caches", "L1 data cache of CPU 0,8  32 Kilobytes, 8 Ways  MOLTA_CacheMemory\n"},
        {"MOLTA_Fan", "fan1 of nct6798  MOLTA_Fan\n"},
        {"cpu", "AMD EPYC 72F3 8-Core Processor  4 Cores, 8 Threads  MOLTA_Processor\n"},
        {"partitions", "EFI System  sda1, 512 Megabytes  MOLTA_DiskPartition\n"},
    };
    for (const auto& [cls, line] : cases) {
        const std::string tree = server.Show(std::string("--tree ") + cls).out;
        EXPECT_THAT("\n" + tree, HasSubstr(std::string("\n") + line));
    }
}
