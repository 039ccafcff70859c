// Slots for cards and the devices in them, devices on the main board, and sockets for plugs.
#include <algorithm>
#include <map>

#include "BusDevice.h"
#include "StructureFields.h"

namespace {

constexpr uint8_t kConnector = 8, kSlot = 9, kOnboardDevice = 41;
constexpr size_t kShortestConnector = 0x09, kShortestSlot = 0x0C, kShortestOnboardDevice = 0x0B;
constexpr uint16_t kAvailable = 3, kInUse = 4;
constexpr const char *kKernelSlots = "/sys/bus/pci/slots", *kDevices = "/sys/bus/pci/devices/";

using TNames = std::vector<std::string>;

THardwareFact ParseSlotAddress(const TSmbiosStructure& structure, size_t offset) {
    return ParsePciAddress(structure, offset, offset + 2);
}

constexpr TStructureField kSlotFields[] = {
    {"SlotDesignation", 0x04, ParseText}, {"SlotID", 0x09, ParseShort},           {"SlotType", 0x05, ParseWord},
    {"DataBusWidth", 0x06, ParseWord},    {"SlotUsage", 0x07, ParseWord},         {"SlotLength", 0x08, ParseWord},
    {"HotPlug", 0x0C, ParseBit<1>},       {"BusAddress", 0x0D, ParseSlotAddress},
};

THardwareFact ParseDeviceKind(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t number) {
        return (number & 0x7F) == 0 ? std::nullopt : std::optional<uint16_t>(number & 0x7F);
    });
}

constexpr TStructureField kOnboardFields[] = {
    {"ReferenceDesignation", 0x04, ParseText}, {"DeviceType", 0x05, ParseDeviceKind},  {"Enabled", 0x05, ParseBit<7>},
    {"DeviceNumber", 0x06, ParseByte},         {"BusAddress", 0x07, ParseSlotAddress},
};

constexpr TStructureField kConnectorFields[] = {
    {"InternalDesignation", 0x04, ParseText},
    {"InternalConnectorType", 0x05, ParseWord},
    {"ExternalDesignation", 0x06, ParseText},
    {"ExternalConnectorType", 0x07, ParseWord},
    {"PortType", 0x08, ParseWord},
};

/// The functions on the PCI buses, and what is behind them.
class TPciBus {
public:
    explicit TPciBus(const TSystemRoot& root) : fRoot(root), fFunctions(root.Names(kDevices)) {
        std::sort(fFunctions.begin(), fFunctions.end());
    }

    bool Has(const std::string& address) const {
        return std::binary_search(fFunctions.begin(), fFunctions.end(), address);
    }

    /// At "0000:41:00", or on a whole bus at "0000:41".
    TNames FunctionsAt(const std::string& place) const {
        TNames found;
        for (auto at = std::lower_bound(fFunctions.begin(), fFunctions.end(), place);
             at != fFunctions.end() && at->compare(0, place.size(), place) == 0; ++at)
            if (const char next = (*at)[std::min(place.size(), at->size() - 1)]; next == '.' || next == ':')
                found.push_back(*at);
        return found;
    }

    /// The place of what is in the slot that firmware says is at the address. Some firmware tells the address of the
    /// port that leads to the slot. Further down a bridge may be the card itself.
    std::string PlaceOf(const std::string& address) const {
        if (!IsRootPort(address)) return address.substr(0, address.rfind('.'));
        for (const std::string& name : fRoot.Names(kDevices + address))
            if (Has(name)) return name.substr(0, name.rfind('.'));
        return "";
    }

private:
    bool IsRootPort(const std::string& address) const {
        const std::string folder = kDevices + address;
        if (!Has(address) || Has(ParentName(fRoot.ReadLink(folder).ValueOr("")))) return false;
        if (fRoot.ReadText(folder + "/class").ValueOr("").compare(0, 6, "0x0604") == 0) return true;
        return fRoot.ReadFile(folder + "/uevent").ValueOr("").find("PCI_CLASS=604") != std::string::npos;
    }

    const TSystemRoot& fRoot;
    TNames fFunctions;
};

// "Unknown" is what the kernel says of a bus without a speed.
THardwareFact ReadSpeed(const TSystemRoot& root, const std::string& path) {
    TFact<std::string> speed = root.ReadText(path);
    if (speed && speed->compare(0, 7, "Unknown") == 0) speed.value.reset();
    return speed;
}

// The files "power", "latch" and "adapter" are not read: some drivers ask the firmware for them.
THardware ReadKernelSlot(const TSystemRoot& root, const std::string& name) {
    const std::string folder = std::string(kKernelSlots) + '/' + name + '/';
    THardware slot;
    slot.tag = "pci-" + name;
    slot.caption = "Slot " + name;
    slot.properties = {{"SlotName", TFact<std::string>::Of(name, kKernelSlots)},
                       {"MaxBusSpeed", ReadSpeed(root, folder + "max_bus_speed")},
                       {"CurrentBusSpeed", ReadSpeed(root, folder + "cur_bus_speed")},
                       {"BusAddress", root.ReadText(folder + "address")}};
    return slot;
}

// Of what both tell, firmware says more.
void Merge(THardware& slot, THardware& kernelSlot) {
    for (THardwareProperty& property : kernelSlot.properties)
        if (slot.Find(property.name) == nullptr) slot.properties.push_back(std::move(property));
}

void AddKernelSlot(THardware slot, const TPciBus& bus, TChassisFacts& facts) {
    slot.devices = bus.FunctionsAt(slot.Text("BusAddress"));
    const uint16_t usage = slot.devices.empty() ? kAvailable : kInUse;
    slot.properties.push_back({"SlotUsage", TFact<uint16_t>::Of(usage, "/sys/bus/pci/devices")});
    facts.slots.push_back(std::move(slot));
}

}  // namespace

void ParseSlots(const TStructures& structures, TChassisFacts& facts) {
    ForEachOfType(structures, kSlot, kShortestSlot, [&](const auto& structure, const std::string& tag) {
        THardware slot = ParseHardware(structure, tag, kSlotFields);
        const std::string name = slot.Text("SlotDesignation");
        slot.caption = name.empty() ? "Slot " + tag : name;
        facts.slots.push_back(std::move(slot));
    });
}

void ParseOnboardDevices(const TStructures& structures, TChassisFacts& facts) {
    ForEachOfType(structures, kOnboardDevice, kShortestOnboardDevice, [&](const auto& structure, const auto& tag) {
        THardware device = ParseHardware(structure, tag, kOnboardFields);
        const std::string name = device.Text("ReferenceDesignation");
        device.caption = name.empty() ? "Onboard device " + tag : name;
        facts.onboardDevices.push_back(std::move(device));
    });
}

void ParseConnectors(const TStructures& structures, TChassisFacts& facts) {
    ForEachOfType(structures, kConnector, kShortestConnector, [&](const auto& structure, const std::string& tag) {
        THardware connector = ParseHardware(structure, tag, kConnectorFields);
        const std::string outside = connector.Text("ExternalDesignation"),
                          inside = connector.Text("InternalDesignation");
        connector.caption = "Connector " + (!outside.empty() ? outside : !inside.empty() ? inside : tag);
        facts.connectors.push_back(std::move(connector));
    });
}

void ReadSlots(const TSystemRoot& root, TChassisFacts& facts) {
    const TFact<TNames> names = root.ListKind(kKernelSlots, kKernelSlots);
    facts.slotListing = names || !root.LacksKind("/sys/bus/pci") ? ListingOf(names) : TListing::Of(true, names.source);
    const TFact<TNames> devices = root.ListKind("/sys/bus/pci/devices", "/sys/bus/pci");
    facts.pciListing = ListingOf(devices);
    if (names.ValueOr({}).empty() && facts.slots.empty() && facts.onboardDevices.empty()) return;

    const TPciBus bus(root);
    std::map<std::string, THardware> kernelSlots;  // by place
    std::vector<THardware> others;
    for (const std::string& name : names.ValueOr({})) {
        THardware slot = ReadKernelSlot(root, name);
        if (const auto [at, isNew] = kernelSlots.emplace(slot.Text("BusAddress"), slot); !isNew) others.push_back(slot);
    }
    for (THardware& slot : facts.slots) {
        const std::string address = slot.Text("BusAddress"), place = address.empty() ? "" : bus.PlaceOf(address);
        if (place.empty()) continue;
        slot.devices = bus.FunctionsAt(place);
        const auto same = kernelSlots.find(place);
        if (same == kernelSlots.end()) continue;
        Merge(slot, same->second);
        kernelSlots.erase(same);
    }
    for (auto& [place, slot] : kernelSlots) AddKernelSlot(std::move(slot), bus, facts);
    for (THardware& slot : others) AddKernelSlot(std::move(slot), bus, facts);
    for (THardware& device : facts.onboardDevices)
        if (const std::string address = device.Text("BusAddress"); bus.Has(address)) device.devices = {address};
}
