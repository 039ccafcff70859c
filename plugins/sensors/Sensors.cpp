#include "Sensors.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "SystemRoot.h"

namespace {

const std::string kHwmon = "/sys/class/hwmon";
const std::string kThermal = "/sys/class/thermal";

struct TKind {
    ESensorKind kind;
    std::string_view prefix;
    double divisor;  ///< from the unit of the file to that of the property
};

constexpr TKind kTemperature = {ESensorKind::eTemperature, "temp", 1e3};
constexpr TKind kKinds[] = {kTemperature,
                            {ESensorKind::eVoltage, "in", 1e3},
                            {ESensorKind::eCurrent, "curr", 1e3},
                            {ESensorKind::ePower, "power", 1e6},
                            {ESensorKind::eFan, "fan", 1}};

struct TLimit {
    std::string_view suffix;
    TFact<double> TSensor::*fact;
};

constexpr TLimit kLimits[] = {{"_lcrit", &TSensor::lowerCritical},
                              {"_min", &TSensor::lower},
                              {"_max", &TSensor::upper},
                              {"_crit", &TSensor::upperCritical},
                              {"_emergency", &TSensor::upperFatal},
                              {"_output", &TSensor::target},  // of applesmc
                              {"_target", &TSensor::target}};

// False for the ends of a driver's range, which sysfs has where there is no reading or limit.
bool IsTemperature(double degrees) { return degrees > -273.15 && degrees < 1000; }

TFact<double> ReadScaled(const TSystemRoot& root, const std::string& path, const TKind& kind) {
    return root.ReadNumber<int64_t>(path).Map([&](int64_t number) {
        const double scaled = static_cast<double>(number) / kind.divisor;
        const bool isGood = kind.kind != ESensorKind::eTemperature || IsTemperature(scaled);
        return isGood ? std::optional(scaled) : std::nullopt;
    });
}

// The channel of "temp3_input" is "temp3". Some power sensors only have an average, some fans only the speed that they
// are told to have.
std::string_view ChannelOf(std::string_view file, const TKind& kind) {
    for (const std::string_view suffix : {"_input", "_average", "_output"}) {
        if (!EndsWith(file, suffix)) continue;
        const std::string_view channel = file.substr(0, file.size() - suffix.size());
        if (channel.substr(0, kind.prefix.size()) != kind.prefix) continue;
        if (ParseNumber<unsigned>(channel.substr(kind.prefix.size()))) return channel;
    }
    return "";
}

std::string_view WithoutLast(std::string_view path) {
    return path.substr(0, path.rfind('/') == std::string_view::npos ? 0 : path.rfind('/'));
}

std::string_view LastOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

// Removes a last "hwmon/hwmon3" or "nvme/nvme0", whose number depends on the order of loading.
bool RemoveNumberedDevice(std::string_view& path) {
    const std::string_view name = LastOf(path), folder = LastOf(WithoutLast(path));
    if (folder.empty() || name.substr(0, folder.size()) != folder) return false;
    if (!ParseNumber<unsigned>(name.substr(folder.size()))) return false;
    path = WithoutLast(WithoutLast(path));
    return true;
}

// The path below /sys/devices that a link leads to; empty if it leads elsewhere.
std::string_view DevicesPath(std::string_view link) {
    constexpr std::string_view kDevices = "/devices/";
    const size_t start = link.find(kDevices);
    return start == std::string_view::npos ? "" : link.substr(start + kDevices.size());
}

using TFiles = std::set<std::string, std::less<>>;

// One device in /sys/class/hwmon.
struct TChip {
    std::string folder;  ///< of its files
    std::string devicePath;
    std::string name;
    TFiles files;
    bool isOfDevice;  ///< the files are those of the device that it belongs to
};

TFiles FilesIn(const TSystemRoot& root, const std::string& folder) {
    TFiles files;
    for (std::string& name : root.Names(folder)) files.insert(std::move(name));
    return files;
}

bool HasChannel(const TFiles& files, const TKind& kind) {
    return std::any_of(files.begin(), files.end(), [&](const auto& file) { return !ChannelOf(file, kind).empty(); });
}

bool HasChannels(const TFiles& files) {
    return std::any_of(std::begin(kKinds), std::end(kKinds),
                       [&](const TKind& kind) { return HasChannel(files, kind); });
}

// Old drivers, such as applesmc, put their files into the folder of the device, which the hwmon device links to.
void FindFiles(const TSystemRoot& root, const std::string& link, TChip& chip) {
    chip.folder = link + '/';
    chip.files = FilesIn(root, chip.folder);
    chip.isOfDevice = false;
    if (HasChannels(chip.files)) return;
    TFiles files = FilesIn(root, chip.folder + "device/");
    if (!HasChannels(files)) return;
    chip.folder += "device/";
    chip.files = std::move(files);
    chip.isOfDevice = true;
}

std::string ReadName(const TSystemRoot& root, const std::string& link, const std::string& hwmon) {
    const TFact<std::string> name = root.ReadText(link + "/name");
    return name ? *name : root.ReadText(link + "/device/name").ValueOr(hwmon);
}

TChip ReadChip(const TSystemRoot& root, const std::string& hwmon) {
    TChip chip;
    const std::string link = kHwmon + '/' + hwmon;
    FindFiles(root, link, chip);
    chip.name = ReadName(root, link, hwmon);
    chip.devicePath = StableDevicePath(root.ReadLink(link).ValueOr(""), chip.name);
    if (chip.devicePath.empty() && chip.isOfDevice)
        chip.devicePath = DevicesPath(root.ReadLink(link + "/device").ValueOr(""));
    if (chip.devicePath.empty()) chip.devicePath = hwmon;
    return chip;
}

// A broken or missing probe has a fault, and then any number as reading.
TFact<double> ReadReading(const TSystemRoot& root, const TChip& chip, const std::string& channel, const TKind& kind) {
    const std::string fault = channel + "_fault", input = channel + "_input", average = channel + "_average";
    if (chip.files.count(fault) != 0 && root.ReadFlag(chip.folder + fault).ValueOr(false))
        return TFact<double>::Missing(EAbsence::eNotPresent, chip.folder + fault);
    const bool hasOnlyAverage = chip.files.count(input) == 0 && chip.files.count(average) != 0;
    return ReadScaled(root, chip.folder + (hasOnlyAverage ? average : input), kind);
}

TSensor ReadChannel(const TSystemRoot& root, const TChip& chip, const std::string& channel, const TKind& kind) {
    TSensor sensor;
    sensor.kind = kind.kind;
    sensor.id = chip.devicePath + "/" + channel;
    sensor.chip = chip.name;
    sensor.label = root.ReadText(chip.folder + channel + "_label").ValueOr(channel);
    sensor.reading = ReadReading(root, chip, channel, kind);
    for (const TLimit& limit : kLimits)
        if (const std::string name = channel + std::string(limit.suffix); chip.files.count(name) != 0)
            sensor.*limit.fact = ReadScaled(root, chip.folder + name, kind);
    return sensor;
}

void AddChannels(const TSystemRoot& root, const TChip& chip, const TKind& kind, std::vector<TSensor>& sensors) {
    std::set<std::string, bool (*)(std::string_view, std::string_view)> channels(NaturalLess);
    for (const std::string& file : chip.files)
        if (const std::string_view channel = ChannelOf(file, kind); !channel.empty()) channels.emplace(channel);
    for (const std::string& channel : channels) sensors.push_back(ReadChannel(root, chip, channel, kind));
}

// Where a device has several hwmon devices, the files in its own folder are read for the first of them only.
void AddChips(const TSystemRoot& root, const std::vector<std::string>& names, std::vector<TSensor>& sensors) {
    std::set<std::string> devices;
    for (const std::string& hwmon : names) {
        const TChip chip = ReadChip(root, hwmon);
        if (chip.isOfDevice && !devices.insert(chip.devicePath).second) continue;
        for (const TKind& kind : kKinds) AddChannels(root, chip, kind, sensors);
    }
}

// The name of the hwmon device that the kernel makes for a thermal zone of this type.
std::string HwmonNameOf(std::string type) {
    std::replace(type.begin(), type.end(), '-', '_');
    return type;
}

void ReadTrips(const TSystemRoot& root, const std::string& folder, TSensor& sensor) {
    for (const std::string& name : root.Names(folder)) {
        if (!EndsWith(name, "_type") || name.substr(0, 11) != "trip_point_") continue;
        const std::string type = root.ReadText(folder + name).ValueOr("");
        const std::string file = folder + name.substr(0, name.size() - 4) + "temp";
        if (type == "critical") sensor.upperCritical = ReadScaled(root, file, kTemperature);
        if (type == "hot") sensor.upper = ReadScaled(root, file, kTemperature);
    }
}

TSensor ReadZone(const TSystemRoot& root, const std::string& folder, const std::string& type) {
    TSensor sensor;
    sensor.kind = ESensorKind::eTemperature;
    sensor.id = "thermal/" + type;
    sensor.chip = "thermal";
    sensor.label = type;
    sensor.reading = ReadScaled(root, folder + "temp", kTemperature);
    ReadTrips(root, folder, sensor);
    return sensor;
}

void AddZones(const TSystemRoot& root, const std::vector<std::string>& zones, std::vector<TSensor>& sensors) {
    std::set<std::string> chips;
    for (const TSensor& sensor : sensors) chips.insert(sensor.chip);
    for (const std::string& zone : zones) {
        if (zone.substr(0, 12) != "thermal_zone") continue;
        const std::string folder = kThermal + '/' + zone + '/';
        const std::string type = root.ReadText(folder + "type").ValueOr(zone);
        if (chips.count(HwmonNameOf(type)) == 0) sensors.push_back(ReadZone(root, folder, type));
    }
}

// Several hwmon devices of one device, or zones of one type, are numbered in their order.
void MakeIdsUnique(std::vector<TSensor>& sensors) {
    std::map<std::string, unsigned> counts;
    for (TSensor& sensor : sensors)
        if (const unsigned count = ++counts[sensor.id]; count > 1) sensor.id += "#" + std::to_string(count);
}

}  // namespace

std::string StableDevicePath(const std::string& link, const std::string& chip) {
    std::string_view path = DevicesPath(link);
    if (path.substr(0, 8) == "virtual/") return "virtual/" + chip;
    if (!RemoveNumberedDevice(path)) path = WithoutLast(path);
    RemoveNumberedDevice(path);
    return std::string(path);
}

TSensorFacts ReadSensors(const TSystemRoot& root) {
    TSensorFacts facts;
    const TFact<std::vector<std::string>> chips = root.ListKind(kHwmon, kHwmon);
    facts.listing = root.CheckEntries(kHwmon, chips);
    const TFact<std::vector<std::string>> zones = root.ListKind(kThermal, kThermal);
    facts.zoneListing = root.CheckEntries(kThermal, zones);
    AddChips(root, chips.ValueOr({}), facts.sensors);
    AddZones(root, zones.ValueOr({}), facts.sensors);
    MakeIdsUnique(facts.sensors);
    return facts;
}
