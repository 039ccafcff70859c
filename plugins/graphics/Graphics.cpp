#include <algorithm>
#include <iterator>

#include "GraphicsFacts.h"
#include "HardwareIds.h"

namespace {

const std::string kCards = "/sys/class/drm";
const std::string kPciDevices = "/sys/bus/pci/devices/";
constexpr uint32_t kDisplayClass = 3;
constexpr size_t kEdidLimit = 256 * 128;
constexpr size_t kMostModes = 64;

// In the order of their numbers in the kernel.
constexpr std::string_view kConnectorKinds[] = {
    "Unknown", "VGA",    "DVI-I", "DVI-D", "DVI-A",   "Composite", "SVIDEO", "LVDS",      "Component", "DIN", "DP",
    "HDMI-A",  "HDMI-B", "TV",    "eDP",   "Virtual", "DSI",       "DPI",    "Writeback", "SPI",       "USB"};

// In the order of the numbers in their ValueMap, from 1.
constexpr std::string_view kStatuses[] = {"connected", "disconnected", "unknown"};
constexpr std::string_view kPowerStates[] = {"On", "Standby", "Suspend", "Off"};

template <size_t N>
std::optional<uint16_t> PlaceOf(const std::string_view (&words)[N], std::string_view word, uint16_t first) {
    const auto found = std::find(std::begin(words), std::end(words), word);
    if (found == std::end(words)) return std::nullopt;
    return static_cast<uint16_t>(first + (found - std::begin(words)));
}

template <size_t N>
TFact<uint16_t> ReadWord(const TSystemRoot& root, const std::string& path, const std::string_view (&words)[N]) {
    return root.ReadText(path).Map([&words](const std::string& word) { return PlaceOf(words, word, 1); });
}

// Not present if the file lacks the key.
TFact<std::string> Field(const TFact<std::string>& uevent, std::string_view key) {
    TFact<std::string> field = uevent.Map([key](const std::string& text) { return UeventValue(text, key); });
    if (uevent && !field) field.absence = EAbsence::eNotPresent;
    return field;
}

template <typename T>
TFact<T> First(const TFact<T>& first, TFact<T> second) {
    return first ? first : Otherwise(first, std::move(second));
}

/// What is known by the identity of a function on a PCI bus.
class TPciFunction {
public:
    TPciFunction(const TSystemRoot& root, const std::string& address)
        : fRoot(root), fFolder(kPciDevices + address + '/'), fUevent(root.ReadText(fFolder + "uevent")) {}

    TFact<uint32_t> ClassCode() const { return Number("PCI_CLASS", "class"); }
    bool IsDisplay() const { return ClassCode().ValueOr(0) >> 16 == kDisplayClass; }

    void Want(THardwareIds& names) const {
        names.Want(DeviceId());
        names.Want(ClassId());
    }
    TPciNames NamesIn(const THardwareIds& names) const {
        return {First(names.Name(ClassId()), names.Name(ClassId().substr(0, 4))), names.Name(DeviceId().substr(0, 4)),
                names.Name(DeviceId())};
    }

private:
    // Both are in hexadecimal digits; the ids stand in uevent as "8086:46B3".
    TFact<uint32_t> Number(std::string_view key, const std::string& file) const {
        const auto number = [](const std::string& text) { return ParseNumber<uint32_t>(text, 16); };
        const TFact<std::string> field = Field(fUevent, key);
        return field ? field.Map(number) : First(field.Map(number), fRoot.ReadNumber<uint32_t>(fFolder + file, 16));
    }
    // "8086/46b3"
    std::string DeviceId() const {
        const std::string ids = Field(fUevent, "PCI_ID").ValueOr("");
        const size_t colon = std::min(ids.find(':'), ids.size());
        const auto vendor = ParseNumber<uint16_t>(ids.substr(0, colon), 16),
                   device = ParseNumber<uint16_t>(std::string_view(ids).substr(std::min(colon + 1, ids.size())), 16);
        if (vendor && device) return HexText(4, *vendor) + '/' + HexText(4, *device);
        return HexText(4, fRoot.ReadNumber<uint16_t>(fFolder + "vendor", 16).ValueOr(0)) + '/' +
               HexText(4, fRoot.ReadNumber<uint16_t>(fFolder + "device", 16).ValueOr(0));
    }
    // "C 03/00"
    std::string ClassId() const {
        const uint32_t code = ClassCode().ValueOr(0);
        return "C " + HexText(2, code >> 16 & 0xff) + '/' + HexText(2, code >> 8 & 0xff);
    }

    const TSystemRoot& fRoot;
    std::string fFolder;
    TFact<std::string> fUevent;
};

// Only what the driver has a file for, and what cannot be read.
template <typename T>
TFact<T> IfThere(TFact<T> fact) {
    if (!fact && fact.absence == EAbsence::eNotPresent) fact.source.clear();
    return fact;
}

void ReadAmdgpu(const TSystemRoot& root, const std::string& device, TDisplayController& controller) {
    controller.videoMemory = IfThere(root.ReadNumber<uint64_t>(device + "mem_info_vram_total"));
    controller.visibleMemory = IfThere(root.ReadNumber<uint64_t>(device + "mem_info_vis_vram_total"));
    controller.systemMemory = IfThere(root.ReadNumber<uint64_t>(device + "mem_info_gtt_total"));
    controller.videoBios = IfThere(root.ReadText(device + "vbios_version"));
    controller.serialNumber = IfThere(root.ReadText(device + "serial_number"));
    if (const TFact<std::string> name = root.ReadText(device + "product_name")) controller.model = name;
}

// "Video BIOS: \t 94.02.71.40.2c". A user who may not see a value is told question marks instead.
TFact<std::string> InformationField(const TFact<std::string>& information, std::string_view label) {
    for (const std::string_view line : Lines(information ? std::string_view(*information) : "")) {
        if (line.substr(0, label.size()) != label || line.substr(label.size(), 1) != ":") continue;
        const std::string_view text = Trim(line.substr(label.size() + 1));
        if (text.empty() || text == "N/A") break;
        if (text.find('?') != std::string_view::npos)
            return TFact<std::string>::Missing(EAbsence::eNoPermission, information.source);
        return TFact<std::string>::Of(std::string(text), information.source);
    }
    return TFact<std::string>::Missing(information.absence, information.source);
}

void ReadNvidia(const TSystemRoot& root, TDisplayController& controller) {
    const TFact<std::string> information =
        root.ReadFile("/proc/driver/nvidia/gpus/" + controller.id + "/information", 1 << 16);
    controller.videoBios = IfThere(InformationField(information, "Video BIOS"));
    controller.uuid = IfThere(InformationField(information, "GPU UUID"));
    if (const TFact<std::string> model = InformationField(information, "Model")) controller.model = model;
}

void ReadDevice(const TSystemRoot& root, const std::string& folder, TDisplayController& controller) {
    const TFact<std::string> uevent = root.ReadFile(folder + "uevent");
    controller.driver = First(Field(uevent, "DRIVER"), root.ReadLinkName(folder + "driver"));
    if (!controller.driver) controller.driver.source = folder + "driver";
    controller.model = Field(uevent, "OF_COMPATIBLE_0");
    if (controller.driver.ValueOr("") == "amdgpu") ReadAmdgpu(root, folder, controller);
}

void ReadPciDevice(const TSystemRoot& root, TDisplayController& controller) {
    const std::string folder = kPciDevices + controller.id + '/';
    ReadDevice(root, folder, controller);
    controller.isPrimary = IfThere(root.ReadFlag(folder + "boot_vga"));
    controller.aperture =
        root.ReadFile(folder + "resource").Map([](const std::string& text) { return LargestAperture(text); });
    if (!controller.aperture && controller.aperture.absence == EAbsence::eNotSupported)
        controller.aperture.source.clear();
    if (controller.driver.ValueOr("") == "nvidia") ReadNvidia(root, controller);
}

bool IsCard(std::string_view name) {
    return name.substr(0, 4) == "card" && ParseNumber<uint32_t>(name.substr(4)).has_value();
}

/// Finds the controllers and what belongs to them.
class TGraphicsReader {
public:
    explicit TGraphicsReader(const TSystemRoot& root) : fRoot(root) {}

    TGraphicsFacts Read() {
        const TFact<std::vector<std::string>> entries = fRoot.ListKind(kCards, kCards);
        fFacts.cardListing = fRoot.CheckEntries(kCards, entries);
        fFacts.edidListing = TListing::Of(true, kCards);
        for (const std::string& name : entries.ValueOr({}))
            if (IsCard(name)) AddCard(name);
        for (const std::string& name : entries.ValueOr({})) AddToCard(name);
        AddFunctions();
        NameFunctions();
        NameMakers();
        return std::move(fFacts);
    }

private:
    // "../../devices/pci0000:00/0000:00:02.0/drm/card0" without the last two names.
    std::string DeviceLinkOf(const std::string& entry) const {
        const std::string link = fRoot.ReadLink(kCards + '/' + entry).ValueOr("");
        const size_t folder = link.rfind("/drm/");
        return folder == std::string::npos ? "" : link.substr(0, folder);
    }

    // A device may have a second card, whose connectors are told with the first one's.
    void AddCard(const std::string& name) {
        const std::string link = DeviceLinkOf(name);
        TDisplayController controller;
        controller.id = link.empty() ? name : link.substr(link.rfind('/') + 1);
        if (FindController(controller.id) != nullptr) return;
        controller.card = name;
        controller.busDevice = FindBusDevice(fRoot, link + "/drm");
        if (controller.busDevice.pciAddress == controller.id)
            ReadPciDevice(fRoot, controller);
        else
            ReadDevice(fRoot, kCards + '/' + name + "/device/", controller);
        fFacts.controllers.push_back(std::move(controller));
    }

    TDisplayController* FindController(std::string_view id) {
        const auto found = std::find_if(fFacts.controllers.begin(), fFacts.controllers.end(),
                                        [id](const TDisplayController& controller) { return controller.id == id; });
        return found == fFacts.controllers.end() ? nullptr : &*found;
    }

    // A connector is named after its card, as in "card0-HDMI-A-1". A render node lies beside the card.
    void AddToCard(const std::string& name) {
        const size_t dash = name.find('-');
        if (dash != std::string::npos && IsCard(name.substr(0, dash))) return AddConnector(name, dash);
        if (name.substr(0, 7) != "renderD") return;
        const std::string link = DeviceLinkOf(name);
        TDisplayController* const controller = FindController(link.substr(link.rfind('/') + 1));
        if (controller != nullptr && controller->renderNode.empty()) controller->renderNode = name;
    }

    void AddConnector(const std::string& entry, size_t dash) {
        const std::string folder = kCards + '/' + entry + '/', link = DeviceLinkOf(entry.substr(0, dash));
        TVideoConnector connector;
        connector.name = entry.substr(dash + 1);
        connector.controller = link.empty() ? entry.substr(0, dash) : link.substr(link.rfind('/') + 1);
        if (FindController(connector.controller) == nullptr) return;
        connector.id = connector.controller + '/' + connector.name;
        connector.kind = TFact<std::string>::Of(connector.name, kCards + '/' + entry).Map(ConnectorKind);
        connector.status = ReadWord(fRoot, folder + "status", kStatuses);
        connector.isEnabled = fRoot.ReadText(folder + "enabled").Map([](const std::string& text) {
            return text == "enabled" || text == "disabled" ? std::optional(text == "enabled") : std::nullopt;
        });
        connector.powerState = ReadWord(fRoot, folder + "dpms", kPowerStates);
        connector.modes = ReadModes(folder + "modes");
        AddMonitor(fRoot.ReadFile(folder + "edid", kEdidLimit), connector);
        fFacts.connectors.push_back(std::move(connector));
    }

    // The same resolution stands there once for each refresh rate.
    TFact<std::vector<std::string>> ReadModes(const std::string& path) const {
        return fRoot.ReadFile(path).Map([](const std::string& text) {
            std::vector<std::string> modes;
            for (const std::string_view line : Lines(text))
                if (modes.size() < kMostModes && !line.empty() &&
                    std::find(modes.begin(), modes.end(), line) == modes.end())
                    modes.emplace_back(line);
            return std::optional(modes);
        });
    }

    void AddMonitor(const TFact<std::string>& bytes, TVideoConnector& connector) {
        connector.edidState = TFact<uint16_t>::Missing(bytes.absence, bytes.source);
        if (IsUnreadable(bytes)) fFacts.edidListing = ListingOf(bytes);
        if (!bytes || bytes->empty()) return;
        std::optional<TEdid> edid = ParseEdid(*bytes);
        connector.edidState.value = static_cast<uint16_t>(edid ? edid->state : EEdidState::eNoEdid);
        if (edid) fFacts.monitors.push_back({connector.id, TFact<TEdid>::Of(std::move(*edid), bytes.source), {}});
    }

    // A card can belong to a device on top of the function, such as "virtio0".
    bool IsCovered(std::string_view address) const {
        return std::any_of(
            fFacts.controllers.begin(), fFacts.controllers.end(),
            [address](const TDisplayController& controller) { return controller.busDevice.pciAddress == address; });
    }

    // Those that have no DRM driver.
    void AddFunctions() {
        const TFact<std::vector<std::string>> addresses = fRoot.ListKind("/sys/bus/pci/devices", "/sys/bus/pci");
        fFacts.pciListing = fRoot.CheckEntries("/sys/bus/pci/devices", addresses);
        fFacts.usbListing =
            fRoot.CheckEntries("/sys/bus/usb/devices", fRoot.ListKind("/sys/bus/usb/devices", "/sys/bus/usb"));
        for (const std::string& address : addresses.ValueOr({})) {
            const TPciFunction function(fRoot, address);
            if (const auto code = function.ClassCode(); IsUnreadable(code)) fFacts.pciListing = ListingOf(code);
            if (!function.IsDisplay() || IsCovered(address) || FindController(address) != nullptr) continue;
            TDisplayController controller;
            controller.id = controller.busDevice.pciAddress = address;
            ReadPciDevice(fRoot, controller);
            fFacts.controllers.push_back(std::move(controller));
        }
    }

    void NameFunctions() {
        THardwareIds names;
        for (const TDisplayController& controller : fFacts.controllers)
            if (const std::string& address = controller.busDevice.pciAddress; !address.empty())
                TPciFunction(fRoot, address).Want(names);
        names.Read(fRoot, "pci.ids");
        for (TDisplayController& controller : fFacts.controllers) {
            if (controller.busDevice.pciAddress.empty()) continue;
            controller.names = TPciFunction(fRoot, controller.busDevice.pciAddress).NamesIn(names);
            controller.model = First(controller.model, controller.names.device);
        }
    }

    void NameMakers() {
        if (fFacts.monitors.empty()) return;
        TFact<std::string> list = fRoot.ReadFile("/usr/share/misc/pnp.ids");
        if (!list) list = fRoot.ReadFile("/usr/share/hwdata/pnp.ids");
        for (TMonitor& monitor : fFacts.monitors) {
            const std::string& id = monitor.edid->manufacturerId;
            monitor.maker = TFact<std::string>::Missing(list.absence, list.source);
            if (list) monitor.maker.value = MakerName(*list, id);
        }
    }

    const TSystemRoot& fRoot;
    TGraphicsFacts fFacts;
};

}  // namespace

TGraphicsFacts ReadGraphics(const TSystemRoot& root) { return TGraphicsReader(root).Read(); }

std::optional<uint16_t> ConnectorKind(std::string_view name) {
    return PlaceOf(kConnectorKinds, name.substr(0, name.rfind('-')), 0);
}

// Each line has the first and the last address of a range and its flags.
std::optional<uint64_t> LargestAperture(std::string_view resource) {
    constexpr uint64_t kMemory = 0x200, kPrefetchable = 0x2000;
    uint64_t largest = 0;
    for (const std::string_view line : Lines(resource)) {
        const std::vector<std::string_view> fields = Split(line, ' ');
        if (fields.size() != 3) continue;
        const auto start = ParseNumber<uint64_t>(fields[0], 16), end = ParseNumber<uint64_t>(fields[1], 16),
                   flags = ParseNumber<uint64_t>(fields[2], 16);
        if (!start || !end || !flags || *end < *start || (~*flags & (kMemory | kPrefetchable)) != 0) continue;
        largest = std::max(largest, *end - *start + 1);
    }
    return largest == 0 ? std::nullopt : std::optional(largest);
}

std::optional<std::string> MakerName(std::string_view list, std::string_view id) {
    if (id.empty()) return std::nullopt;
    for (const std::string_view line : Lines(list))
        if (line.size() > id.size() && line.substr(0, id.size()) == id && line[id.size()] == '\t')
            return std::string(Trim(line.substr(id.size())));
    return std::nullopt;
}
