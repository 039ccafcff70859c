#include <sys/statvfs.h>

#include <filesystem>

#include "BlockDevices.h"
#include "FileSystemTypes.h"
#include "Mounts.h"
#include "Space.h"
#include "support/TestSupport.h"

TEST(StorageReaderTest, OnlyFileSystemsThatAnswerAtOnceAreAsked) {
    const std::string server = "it may wait for a server or a program";
    const std::pair<const char*, std::string> kCases[] = {
        {"1 0 8:1 / /m rw - ext4 /dev/sda1 rw", ""},
        {"1 0 0:9 / /m rw - tmpfs tmpfs rw", ""},
        {"1 0 0:9 / /m rw - overlay overlay rw,lowerdir=/a,upperdir=/b", ""},
        {"1 0 0:9 / /m rw - overlay overlay rw,lowerdir=/a", "it passes the question on"},
        {"1 0 0:9 / /m rw - nfs4 server:/export rw", server},
        {"1 0 0:9 / /m rw - fuse.sshfs host: rw", server},
        {"1 0 8:1 / /m rw - fuseblk /dev/sda1 rw", server},
        {"1 0 0:9 / /m rw - neverheardof x rw", server},
        {"1 7 8:1 / /m rw - ext4 /dev/sda1 rw\n2 1 0:9 / /m rw - tmpfs tmpfs rw", "another mount stands over it"},
        {"1 2 8:1 / /m rw - ext4 /dev/sda1 rw\n2 0 0:9 / / rw - cifs //a/b rw", "the way to " + server},
        {"1 2 8:1 / /m rw - ext4 /dev/sda1 rw\n2 0 0:9 / / rw - autofs x rw", "the way to " + server},
    };
    TempFolder root;
    root.Write(".kyr/statvfs", "/m\t4096 512 100 50 40 0 0\n");
    const TSystemRoot recorded(root.Path());
    for (const auto& [table, reason] : kCases) {
        const std::vector<TMount> mounts = ParseMounts(table);
        const TFact<TSpace> space = TSpaceReader(recorded, mounts).Ask(mounts.at(0));
        EXPECT_EQ(space.source, reason.empty() ? "statvfs of /m" : "/m (not asked: " + reason + ")") << table;
        EXPECT_EQ(space ? space->available : 0, reason.empty() ? 40u * 512 : 0u) << table;
    }
}

TEST(StorageReaderTest, RunningMachineIsAskedOfTheMountItselfAndNotOfOneInItsPlace) {
    const TSystemRoot machine("");
    std::vector<TMount> mounts = *ReadMounts(machine).value;
    struct statvfs status;
    ASSERT_EQ(statvfs("/proc", &status), 0);
    TMount proc;
    for (const TMount& mount : mounts)
        if (mount.point == "/proc") proc = mount;
    proc.type = "tmpfs";  // proc itself is no file system to ask
    proc.parentId = "none";
    EXPECT_TRUE(TSpaceReader(machine, {}).Ask(proc)) << proc.id;
    proc.id += "0";
    EXPECT_EQ(TSpaceReader(machine, {}).Ask(proc).source, "/proc (not asked: another mount stands over it)");
}

TEST(StorageReaderTest, RecordedSpaceThatCannotBeIsNone) {
    for (const char* line : {"/\t1 2 3", "/ 1 2 3 4 5 6 7", "/\t1 1 5 6 5 0 0", "/\t1 18446744073709551615 2 1 1 0 0"})
        EXPECT_TRUE(ParseRecordedSpace(line).empty()) << line;
    EXPECT_EQ(ParseRecordedSpace("/a\\040b\t4096 4096 10 5 4 0 0").at("/a b").used, 5u * 4096);
}

TEST(StorageReaderTest, BayIsNamedByTheEnclosureOrNumberedByTheAdapter) {
    const TempFolder machine;
    machine.Write("sys/class/sas_device/end_device-0:1/bay_identifier", "5\n");
    machine.Write("sys/class/block/sdc/device/enclosure_device:Slot 07/slot", "7\n");
    // The disk, the end of the path in /sys/devices that it is at, and its bay.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"sda", "/port-0:1/end_device-0:1/target0:0:1/0:0:1:0/block/sda", "5"},
        {"sdb", "/port-0:2/end_device-0:2/target0:0:2/0:0:2:0/block/sdb", "-"},
        {"sdc", "/port-0:1/end_device-0:1/target0:0:3/0:0:3:0/block/sdc", "Slot 07"},
        {"sdd", "/ata1/host1/target1:0:0/1:0:0:0/block/sdd", "-"},
        {"sde", "/end_device-", "-"}};
    for (const auto& [name, path, bay] : cases) {
        const TDeviceEntry entry = {name, std::string("/sys/class/block/") + name + "/", path, {}};
        EXPECT_EQ(ReadBay(TSystemRoot(machine.Path()), entry).ValueOr("-"), bay) << name;
    }
}

TEST(StorageReaderTest, WordsOfTheKernelAreRead) {
    EXPECT_EQ(UnescapeOctal("a\\040b\\011\\134\\9\\"), "a b\t\\\\9\\");
    EXPECT_EQ(DecodeUdevText("a\\x20b\\xzz\\x2"), "a b\\xzz\\x2");
    EXPECT_EQ(MergeOptions("rw,relatime", "ro,relatime,size=4k"), "ro,relatime,size=4k");
    EXPECT_EQ(DiskOfPath("nvme0n1") + DiskOfPath("nvme0") + DiskOfPath("nvmecn") + DiskOfPath("cciss!c0d0"), "");
    EXPECT_STREQ(FindPartitionTypeName("C12A7328-F81F-11D2-BA4B-00A0C93EC93B"), "EFI system");
    const std::pair<const char*, const char*> kNames[] = {
        {"vg0-root", "vg0|root"}, {"a--b-c--d-real", "a-b|c-d-real"}, {"whole", "whole|"}, {"", "|"}};
    for (const auto& [name, parts] : kNames)
        EXPECT_EQ(ParseVolumeNames(name).group + "|" + ParseVolumeNames(name).volume, parts) << name;
}

TEST(StorageReaderTest, WayToADiskTellsItsBus) {
    const std::pair<const char*, EBusType> kCases[] = {
        {"../../devices/pci0000:00/0000:00:17.0/ata3/host2/target2:0:0/2:0:0:0/block/sda", EBusType::eSata},
        {"../../devices/pci0000:00/0000:00:14.0/usb1/1-4/1-4:1.0/host1/target1:0:0/1:0:0:0/block/sda", EBusType::eUsb},
        {"../../devices/platform/host3/session1/target3:0:0/3:0:0:0/block/sda", EBusType::eIscsi},
        {"../../devices/pci0000:00/0000:00:05.0/virtio2/host2/target2:0:0/2:0:0:0/block/sda", EBusType::eVirtio},
        {"../../devices/pci0000:00/0000:00:1a.0/mmc_host/mmc0/mmc0:0001/block/mmcblk0", EBusType::eMmc},
        {"../../devices/vbd-768/block/xvda", EBusType::eXen},
        {"../../devices/virtual/nvme-subsystem/nvme-subsys0/nvme0n1", EBusType::eNvme},
        {"", EBusType::eUnknown},
    };
    const TUdevRecord serial(TFact<std::string>::Of("E:ID_ATA_SATA=1\n", "b8:0"));
    for (const auto& [place, type] : kCases) EXPECT_EQ(BusTypeOf(place, serial), type) << place;
    EXPECT_EQ(BusTypeOf(kCases[0].first, TUdevRecord()), EBusType::eAta);
}

TEST(StorageReaderTest, APartitionIsNotTakenForADisk) {
    // The device, its folder, uevent, and the number of the partition, which a disk has not.
    const std::tuple<const char*, const char*, const char*, uint32_t> cases[] = {
        {"sda", "block/sda", "DEVTYPE=disk", 0},
        {"sda1", "block/sda/sda1", "DEVTYPE=partition", 1},
        {"nvme0n1p12", "nvme0n1/nvme0n1p12", "DEVTYPE=partition", 12},
        {"cciss!c0d0p2", "block/cciss!c0d0/cciss!c0d0p2", "DEVTYPE=partition\nPARTN=3", 3},
        {"sdb", "odd/sdb", "DEVTYPE=partition", 0},
        {"sdc", "odd/sdc", "", 0}};
    for (const auto& [name, folder, event, number] : cases) {
        const TempFolder machine;
        machine.Write("sys/devices/" + std::string(folder) + "/uevent", event);
        std::filesystem::create_directories(machine.Path() + "/sys/class/block");
        std::filesystem::create_symlink("../../devices/" + std::string(folder),
                                        machine.Path() + "/sys/class/block/" + name);
        TStorage storage;
        ReadBlockDevices(TSystemRoot(machine.Path()), storage);
        EXPECT_EQ(storage.partitions.empty() ? 0 : *storage.partitions[0].number, number) << name;
        EXPECT_EQ(storage.disks.size() + storage.partitions.size(), 1u) << name;
    }
}
