#include <utility>

#include "export/CycloneDxModel.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/Associations.h"
#include "model/ReadingOrder.h"
#include "render/SummaryPieces.h"
#include "states/HostIdentity.h"
#include "states/StateInstances.h"

namespace {

/// A class of devices.
struct TDeviceClass {
    const char* name;
    const char* prefix;    // of references
    const char* key;       // behind it
    const char* function;  // in words
    const char* firmware;  // what runs in it
};

constexpr TDeviceClass kDevices[] = {
    {"MOLTA_BaseBoard", "board:", "Tag", "base board", "firmware of "},
    {"MOLTA_Processor", "processor:", "DeviceID", "processor", "microcode of "},
    {"MOLTA_PhysicalMemory", "memory:", "Tag", "memory module", "firmware of "},
    {"MOLTA_DiskDrive", "disk:", "DeviceID", "disk drive", "firmware of "},
    {"MOLTA_StorageEnclosure", "enclosure:", "Tag", "storage enclosure", "firmware of "},
    {"MOLTA_NetworkAdapter", "network:", "DeviceID", "network adapter", "firmware of "},
    {"MOLTA_PCIDevice", "pci:", "DeviceID", "PCI device", "firmware of "},
    {"MOLTA_USBDevice", "usb:", "DeviceID", "USB device", "firmware of "},
    {"MOLTA_Monitor", "monitor:", "DeviceID", "monitor", "firmware of "},
    {"MOLTA_Battery", "battery:", "DeviceID", "battery", "firmware of "},
    {"MOLTA_PowerSupply", "power:", "DeviceID", "power supply", "firmware of "},
};

// The properties of which the first that has a value tells the part of a component. Each class has some of them.
const std::vector<const char*> kNames = {"Model", "ModelName", "PartNumber", "DeviceName", "Product", "ProductName"};
const std::vector<const char*> kSuppliers = {"Manufacturer", "VendorName"};
const std::vector<const char*> kVersions = {"Version", "RevisionID", "DeviceRelease"};
const std::vector<const char*> kDescriptions = {"Capacity", "Size", "Chemistry"};
const std::vector<const char*> kFunctions = {"ClassName", "Kind"};
const std::vector<const char*> kLocations = {"DeviceLocator", "BusID", "DeviceID"};
const std::vector<const char*> kFirmwareVersions = {"MicrocodeRevision", "FirmwareRevision", "FirmwareVersion"};

/// Further properties, and how the document names them.
using TNaming = std::pair<const char*, const char*>;
constexpr TNaming kDeviceNumbers[] = {
    {"VendorID", "kyr:vendorId"}, {"PCIDeviceID", "kyr:productId"}, {"ProductID", "kyr:productId"}};
constexpr TNaming kMachineProperties[] = {{"ChassisType", "cdx:device:function"},
                                          {"SKUNumber", "cdx:device:sku"},
                                          {"Hypervisor", "kyr:hypervisor"},
                                          {"Container", "kyr:container"}};
// What tells a thing from all others.
constexpr TNaming kDeviceIdentifiers[] = {{"SerialNumber", "cdx:device:serialNumber"},
                                          {"PermanentAddress", "cdx:device:macAddress"},
                                          {"WWN", "kyr:wwn"},
                                          {"AssetTag", "kyr:assetTag"}};
constexpr TNaming kMachineIdentifiers[] = {{"Name", "kyr:hostName"},
                                           {"SerialNumber", "cdx:device:serialNumber"},
                                           {"UUID", "kyr:uuid"},
                                           {"MachineID", "kyr:machineId"},
                                           {"AssetTag", "kyr:assetTag"}};

constexpr const char* kBiosClass = "MOLTA_SystemBIOSElement";

/// A dependent device works through its antecedent. Ends that are no devices are passed over.
constexpr const char* kAssociations[] = {"MOLTA_NetworkAdapterDevice", "MOLTA_PCIBridgeDevice",
                                         "MOLTA_StorageController", "MOLTA_USBHubDevice", "MOLTA_USBControllerHub"};

void AddProperty(const char* name, const std::string& value, TBomComponent& component) {
    if (!value.empty()) component.properties.push_back({name, value});
}

template <typename TTable>
void AddProperties(const TTable& table, const TBomValues& values, TBomComponent& component) {
    for (const auto& [property, name] : table) AddProperty(name, values.GetFilled(property), component);
}

// What has no name of its own is called after its place: "disk drive /dev/vda".
std::string NameOf(const TDeviceClass& cls, const TBomValues& values) {
    const std::string name = values.FirstFilled(kNames), location = values.FirstOf(kLocations);
    if (!name.empty()) return name;
    return cls.function + (location.empty() ? "" : ' ' + location);
}

TBomComponent MakeDevice(const TDeviceClass& cls, const TBomValues& values) {
    TBomComponent device = {"device", cls.prefix + values.Get(cls.key), NameOf(cls, values)};
    device.version = values.FirstOf(kVersions);
    device.description = values.FirstOf(kDescriptions);
    device.supplier = values.FirstFilled(kSuppliers);
    const std::string function = values.FirstOf(kFunctions);
    AddProperty("cdx:device:function", function.empty() ? cls.function : function, device);
    AddProperty("cdx:device:location", values.FirstOf(kLocations), device);
    AddProperty("cdx:device:sku", values.GetFilled("PartNumber"), device);
    for (const auto& [property, name] : kDeviceNumbers) AddProperty(name, values.Get(property), device);
    return device;
}

// Adapters made by software, such as bridges, are no devices; those of which it is not known make their class partial.
bool IsDevice(const TCIMInstance& instance) {
    return instance.FindProperty("Virtual") == nullptr || HasBoolean(instance, "Virtual", false);
}

/// Adds the devices of the machine with their firmware.
class TDevices {
public:
    TDevices(bool identifiers, TBom& bom) : fIdentifiers(identifiers), fBom(bom) {}

    void AddAll(const TContainer& container) {
        for (const TDeviceClass& cls : kDevices)
            for (const TCIMInstance* instance : InNaturalOrder(InstancesOf(container, cls.name)))
                if (IsDevice(*instance)) Add(cls, *instance);
        for (const TCIMInstance* instance : InNaturalOrder(InstancesOf(container, kBiosClass))) AddBios(*instance);
    }

private:
    void Add(const TDeviceClass& cls, const TCIMInstance& instance) {
        const TBomValues values(instance, fIdentifiers);
        TBomComponent device = MakeDevice(cls, values);
        if (fIdentifiers) AddProperties(kDeviceIdentifiers, values, device);
        const TBomComponent firmware = {
            "firmware", "firmware:" + device.ref, cls.firmware + device.name, values.FirstOf(kFirmwareVersions),
            "",         device.supplier};
        const std::string ref = fBom.Add(std::move(device), &instance);
        fBom.AddDependency(kMachineRef, ref);
        if (!firmware.version.empty()) fBom.AddDependency(ref, fBom.Add(firmware));
    }

    void AddBios(const TCIMInstance& instance) {
        const TBomValues values(instance, fIdentifiers);
        TBomComponent firmware = {"firmware", "firmware:system", "system firmware", values.Get("Version")};
        if (firmware.version.empty()) return;
        firmware.supplier = values.GetFilled("Manufacturer");
        AddProperty("kyr:firmwareRelease", values.Get("FirmwareRelease"), firmware);
        fBom.AddDependency(kMachineRef, fBom.Add(std::move(firmware), &instance));
    }

    const bool fIdentifiers;
    TBom& fBom;
};

void AddDependencies(const TCIMInstance& association, TBom& bom) {
    std::string antecedent, dependent;
    for (const TAssociationEnd& end : EndsOf(association)) {
        if (end.role == "Antecedent") antecedent = bom.RefOf(end.instance);
        if (end.role == "Dependent") dependent = bom.RefOf(end.instance);
    }
    if (!antecedent.empty() && !dependent.empty()) bom.AddDependency(dependent, antecedent);
}

// The names of hosts and serial numbers can be guessed, so that a serial number made of them would give them away.
std::string UnguessableKeyOf(const TContainer& container) {
    std::string key;
    for (const THostText& text : kHostTexts)
        if (text.systemProperty == std::string("MachineID") || text.systemProperty == std::string("UUID"))
            key += HostTextOf(container, text) + '\n';
    return key;
}

void DescribeMachine(const TBomValues& values, bool identifiers, TBomComponent& machine) {
    machine.name = values.GetFilled("ProductName");
    machine.version = values.GetFilled("ProductVersion");
    machine.supplier = values.GetFilled("Manufacturer");
    AddProperties(kMachineProperties, values, machine);
    if (identifiers) AddProperties(kMachineIdentifiers, values, machine);
}

}  // namespace

std::vector<std::string> HardwareClasses() {
    std::vector<std::string> names = {kBiosClass};
    for (const TDeviceClass& cls : kDevices) names.emplace_back(cls.name);
    return names;
}

std::vector<std::string> HardwareAssociations() { return {std::begin(kAssociations), std::end(kAssociations)}; }

void AddHardware(const TContainer& container, const TCycloneDxOptions& options, TBom& bom) {
    const std::vector<TCIMInstance*> machines = InstancesOf(container, kHostClass);
    if (!machines.empty())
        DescribeMachine(TBomValues(*machines.front(), options.identifiers), options.identifiers, bom.fMachine);
    if (bom.fMachine.name.empty()) bom.fMachine.name = "computer";
    bom.fMachineKey = UnguessableKeyOf(container);
    TDevices(options.identifiers, bom).AddAll(container);
    for (const char* name : kAssociations)
        for (const TCIMInstance* association : InstancesOf(container, name)) AddDependencies(*association, bom);
}
