#include <algorithm>
#include <cctype>

#include "BlockDevices.h"

namespace {

struct TPartitionType {
    std::string_view code;
    const char* name;
};

constexpr TPartitionType kPartitionTypes[] = {
    {"c12a7328-f81f-11d2-ba4b-00a0c93ec93b", "EFI system"},
    {"21686148-6449-6e6f-744e-656564454649", "BIOS boot"},
    {"0fc63daf-8483-4772-8e79-3d69d8477de4", "Linux file system"},
    {"0657fd6d-a4ab-43c4-84e5-0933c84b4f4f", "Linux swap"},
    {"e6d6d379-f507-44c2-a23c-238f2a3df928", "Linux LVM"},
    {"a19d880f-05fc-4d3b-a006-743f0f84911e", "Linux RAID"},
    {"4f68bce3-e8cd-4db1-96e7-fbcaf984b709", "Linux root (x86-64)"},
    {"933ac7e1-2eb4-4f13-b844-0e14e2aef915", "Linux home"},
    {"3b8f8425-20e0-4f3b-907f-1a25a76f98e8", "Linux server data"},
    {"bc13c2ff-59e6-4262-a352-b275fd6f7172", "Linux extended boot"},
    {"ca7d7ccb-63ed-4c53-861c-1742536059cc", "Linux encrypted"},
    {"8da63339-0007-60c0-c436-083ac8230908", "Linux reserved"},
    {"e3c9e316-0b5c-4db8-817d-f92df00215ae", "Microsoft reserved"},
    {"ebd0a0a2-b9e5-4433-87c0-68b6b72699c7", "Microsoft basic data"},
    {"de94bba4-06d1-4d40-a16a-bfd50179d6ac", "Windows recovery"},
    {"5808c8aa-7e8f-42e0-85d2-e1e90434cfb3", "Windows LDM metadata"},
    {"af9b60a0-1431-4f62-bc68-3311714a69ad", "Windows LDM data"},
    {"6a898cc3-1dd2-11b2-99a6-080020736631", "ZFS"},
    {"6a945a3b-1dd2-11b2-99a6-080020736631", "ZFS reserved"},
    {"48465300-0000-11aa-aa11-00306543ecac", "HFS+"},
    {"7c3457ef-0000-11aa-aa11-00306543ecac", "APFS"},
    {"0x5", "Extended"},
    {"0x6", "FAT16"},
    {"0x7", "NTFS or exFAT"},
    {"0xb", "FAT32"},
    {"0xc", "FAT32 (LBA)"},
    {"0xe", "FAT16 (LBA)"},
    {"0xf", "Extended (LBA)"},
    {"0x27", "Windows recovery"},
    {"0x82", "Linux swap"},
    {"0x83", "Linux"},
    {"0x85", "Linux extended"},
    {"0x8e", "Linux LVM"},
    {"0xa5", "FreeBSD"},
    {"0xee", "GPT protective"},
    {"0xef", "EFI system"},
    {"0xfd", "Linux RAID"},
};

// Without udev the name is in the uevent file, in a line such as "PARTNAME=root".
TFact<std::string> ReadKernelName(const TSystemRoot& root, const std::string& folder) {
    const TFact<std::string> event = root.ReadText(folder + "uevent");
    const std::optional<std::string> name = UeventValue(event.ValueOr(""), "PARTNAME");
    return name ? TFact<std::string>::Of(*name, event.source) : TFact<std::string>();
}

}  // namespace

TPartition ReadPartition(const TSystemRoot& root, TDeviceEntry& entry, TFact<uint32_t> number) {
    TPartition partition;
    ReadBlockDevice(root, entry, partition);
    partition.parent = ParentName(entry.sysfsPath);
    partition.number = std::move(number);
    partition.offset = ReadSectors(root, entry.folder + "start");
    partition.type = entry.udev.Find("ID_PART_ENTRY_TYPE");
    if (const char* const name = FindPartitionTypeName(partition.type.ValueOr("")))
        partition.typeName = TFact<std::string>::Of(name, partition.type.source);
    else if (!partition.type)
        partition.typeName = partition.type;
    partition.partitionName = entry.udev.FindOptional("ID_PART_ENTRY_NAME");
    if (!partition.partitionName)
        if (TFact<std::string> name = ReadKernelName(root, entry.folder)) partition.partitionName = std::move(name);
    partition.uuid = entry.udev.Find("ID_PART_ENTRY_UUID");
    return partition;
}

const char* FindPartitionTypeName(std::string_view type) {
    std::string code(type);
    for (char& c : code) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (const TPartitionType& entry : kPartitionTypes)
        if (entry.code == code) return entry.name;
    return nullptr;
}
