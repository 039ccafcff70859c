#include <algorithm>

#include "BusDevice.h"
#include "FirmwareIds.h"
#include "HardwareIds.h"
#include "PciFacts.h"

namespace {

const std::string kDevices = "/sys/bus/pci/devices/";

// The number before or after the colon of "8086:100E".
TFact<uint16_t> Half(const TFact<std::string>& pair, bool second) {
    return pair.Map([second](const std::string& text) -> std::optional<uint16_t> {
        const size_t colon = text.find(':');
        if (colon == std::string::npos) return std::nullopt;
        return ParseNumber<uint16_t>(second ? text.substr(colon + 1) : text.substr(0, colon), 16);
    });
}

// Not present if the file lacks the key, since the kernel writes what the device has.
TFact<std::string> Field(const TFact<std::string>& uevent, std::string_view key) {
    TFact<std::string> field = uevent;
    if (uevent) field.value = UeventValue(*uevent, key);
    return field;
}

// What one read of uevent tells of most devices.
void ReadUevent(const TFact<std::string>& uevent, TPciFunction& function) {
    const TFact<std::string> id = Field(uevent, "PCI_ID"), subsystem = Field(uevent, "PCI_SUBSYS_ID");
    function.identity.vendor = Half(id, false);
    function.identity.device = Half(id, true);
    function.identity.subsystemVendor = Half(subsystem, false);
    function.identity.subsystem = Half(subsystem, true);
    function.identity.classCode =
        Field(uevent, "PCI_CLASS").Map([](const std::string& text) { return ParseNumber<uint32_t>(text, 16); });
    function.driver = Field(uevent, "DRIVER");
}

template <typename T>
void ReadIfAbsent(const TSystemRoot& root, const std::string& path, TFact<T>& fact) {
    if (!fact) fact = EitherOf(fact, root.ReadNumber<T>(path, 16));
}

// Old kernels have an empty uevent, or one that nobody may read, or none: then each value has a file of its own.
void ReadSingleFiles(const TSystemRoot& root, const std::string& folder, TPciFunction& function) {
    TPciIdentity& identity = function.identity;
    ReadIfAbsent(root, folder + "vendor", identity.vendor);
    ReadIfAbsent(root, folder + "device", identity.device);
    ReadIfAbsent(root, folder + "subsystem_vendor", identity.subsystemVendor);
    ReadIfAbsent(root, folder + "subsystem_device", identity.subsystem);
    ReadIfAbsent(root, folder + "class", identity.classCode);
    if (!function.driver) function.driver = EitherOf(function.driver, root.ReadLinkName(folder + "driver"));
}

// Kernels before 4.10 tell the revision only in the configuration registers.
TFact<uint8_t> ReadRevision(const TSystemRoot& root, const std::string& folder) {
    constexpr size_t kRegister = 8;
    const TFact<uint8_t> revision = root.ReadNumber<uint8_t>(folder + "revision", 16);
    if (revision || revision.absence != EAbsence::eNotPresent) return revision;
    const TFact<std::string> registers = root.ReadFile(folder + "config", kRegister + 1);
    if (!registers || registers->size() <= kRegister) return revision;
    return TFact<uint8_t>::Of(static_cast<uint8_t>((*registers)[kRegister]), registers.source);
}

TFact<uint16_t> ReadWidth(const TSystemRoot& root, const std::string& path) {
    return root.ReadNumber<uint16_t>(path).Map([](uint16_t lanes) {
        return lanes == 0 || lanes == 255 ? std::nullopt : std::optional(lanes);  // 0: the link is down; 255: unknown
    });
}

std::optional<TPciLink> ReadLink(const TSystemRoot& root, const std::string& folder) {
    TPciLink link;
    link.maxSpeed = root.ReadText(folder + "max_link_speed").Map(ParseLinkSpeed);
    const bool isAbsent = !link.maxSpeed && link.maxSpeed.absence == EAbsence::eNotPresent;
    if (isAbsent && root.Exists(folder)) return std::nullopt;
    link.currentSpeed = root.ReadText(folder + "current_link_speed").Map(ParseLinkSpeed);
    link.maxWidth = ReadWidth(root, folder + "max_link_width");
    link.currentWidth = ReadWidth(root, folder + "current_link_width");
    return link;
}

TFact<uint32_t> ReadInterrupt(const TSystemRoot& root, const std::string& path) {
    TFact<uint32_t> interrupt = root.ReadNumber<uint32_t>(path);
    if (interrupt && *interrupt == 0) interrupt.value.reset();
    return interrupt;
}

// -1 means no node.
TFact<uint32_t> ReadNumaNode(const TSystemRoot& root, const std::string& path) {
    const TFact<int32_t> node = root.ReadNumber<int32_t>(path);
    if (node && *node < 0) return TFact<uint32_t>::Missing(EAbsence::eNotPresent, path);
    return node.Map([](int32_t number) { return std::optional<uint32_t>(number); });
}

// Derived from registers, each of which tells its own source.
TFact<std::vector<std::string>> FirmwareIdsOf(const TPciFunction& function) {
    const TPciIdentity& identity = function.identity;
    std::optional<TPciSubsystem> subsystem;
    if (identity.subsystemVendor.ValueOr(0) != 0 && identity.subsystem)
        subsystem = {*identity.subsystemVendor, *identity.subsystem};
    using TIds = TFact<std::vector<std::string>>;
    const TFact<uint16_t>& last = identity.vendor ? identity.device : identity.vendor;
    if (!last) return TIds::Missing(last.absence, last.source);
    return TIds::Of(
        FirmwareIds(PciInstanceIds("PCI", *identity.vendor, *identity.device, subsystem, function.revision.value)), "");
}

TPciFunction ReadFunction(const TSystemRoot& root, const std::string& address,
                          const std::vector<std::string>& addresses) {
    const std::string folder = kDevices + address + '/';
    TPciFunction function;
    function.address = address;
    const std::string parent = ParentName(root.ReadLink(kDevices + address).ValueOr(""));
    if (std::binary_search(addresses.begin(), addresses.end(), parent)) function.bridge = parent;
    const TFact<std::string> uevent = root.ReadFile(folder + "uevent");
    ReadUevent(uevent, function);
    if (!function.identity.IsKnown()) ReadSingleFiles(root, folder, function);
    function.revision = ReadRevision(root, folder);
    function.interrupt = ReadInterrupt(root, folder + "irq");
    function.numaNode = ReadNumaNode(root, folder + "numa_node");
    function.link = ReadLink(root, folder);
    function.firmwareIds = FirmwareIdsOf(function);
    return function;
}

// The ids as they are written in pci.ids.
struct TListIds {
    explicit TListIds(const TPciIdentity& identity) {
        const unsigned code = identity.classCode.ValueOr(0);
        vendor = HexText(4, identity.vendor.ValueOr(0));
        device = vendor + '/' + HexText(4, identity.device.ValueOr(0));
        subsystemVendor = HexText(4, identity.subsystemVendor.ValueOr(0));
        subsystem = device + '/' + subsystemVendor + ' ' + HexText(4, identity.subsystem.ValueOr(0));
        deviceClass = "C " + HexText(2, code >> 16 & 0xff);
        subclass = deviceClass + '/' + HexText(2, code >> 8 & 0xff);
    }

    std::string vendor, device, subsystemVendor, subsystem, deviceClass, subclass;
};

void WantNames(THardwareIds& names, const TPciIdentity& identity) {
    const TListIds ids(identity);
    for (const std::string& id : {ids.subsystem, ids.subsystemVendor, ids.subclass}) names.Want(id);
}

// A subsystem with the ids of its device is the device itself.
TFact<std::string> SubsystemName(const THardwareIds& names, const TListIds& ids, const TPciIdentity& identity) {
    TFact<std::string> name = names.Name(ids.subsystem);
    const bool isDevice = identity.subsystemVendor.ValueOr(0) == identity.vendor.ValueOr(0) &&
                          identity.subsystem.ValueOr(0) == identity.device.ValueOr(0);
    return name || !isDevice ? name : identity.deviceName;
}

void FillNames(const THardwareIds& names, TPciIdentity& identity) {
    const TListIds ids(identity);
    const TFact<std::string> subclass = names.Name(ids.subclass);
    identity.vendorName = NameOf(identity.vendor, names.Name(ids.vendor));
    identity.deviceName = NameOf(identity.device, names.Name(ids.device));
    identity.subsystemVendorName = NameOf(identity.subsystemVendor, names.Name(ids.subsystemVendor));
    identity.subsystemName = NameOf(identity.subsystem, SubsystemName(names, ids, identity));
    identity.className = NameOf(identity.classCode, subclass ? subclass : names.Name(ids.deviceClass));
}

}  // namespace

TPciFacts ReadPci(const TSystemRoot& root) {
    const TFact<std::vector<std::string>> entries = root.ListKind("/sys/bus/pci/devices", "/sys/bus/pci");
    std::vector<std::string> addresses = entries.ValueOr({});
    std::sort(addresses.begin(), addresses.end());  // natural order would take the hexadecimal digits for decimal ones
    TPciFacts facts;
    facts.listing = root.CheckEntries("/sys/bus/pci/devices", entries);
    THardwareIds names;
    for (const std::string& address : addresses) {
        facts.functions.push_back(ReadFunction(root, address, addresses));
        WantNames(names, facts.functions.back().identity);
    }
    names.Read(root, "pci.ids");
    for (TPciFunction& function : facts.functions) FillNames(names, function.identity);
    return facts;
}

std::optional<uint64_t> ParseLinkSpeed(std::string_view text) {
    const size_t unit = text.find(" GT/s"), point = text.find('.');
    if (unit == std::string_view::npos) return std::nullopt;
    const bool isWhole = point >= unit;
    const auto whole = ParseNumber<uint32_t>(text.substr(0, isWhole ? unit : point));
    const auto tenths =
        isWhole ? std::optional<uint8_t>(0) : ParseNumber<uint8_t>(text.substr(point + 1, unit - point - 1));
    if (!whole || !tenths || *tenths > 9) return std::nullopt;
    return *whole * 1'000'000'000ull + *tenths * 100'000'000ull;
}
