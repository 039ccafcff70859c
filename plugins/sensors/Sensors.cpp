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

// The channel of "temp3_input" is "temp3". Some power sensors only have an average.
std::string_view ChannelOf(std::string_view file, const TKind& kind) {
    for (const std::string_view suffix : {"_input", "_average"}) {
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

// One device in /sys/class/hwmon.
struct TChip {
    std::string folder;
    std::string devicePath;
    std::string name;
    std::set<std::string, std::less<>> files;
};

TChip ReadChip(const TSystemRoot& root, const std::string& hwmon) {
    TChip chip;
    const std::string link = kHwmon + '/' + hwmon;
    chip.folder = link + '/';
    chip.name = root.ReadText(chip.folder + "name").ValueOr(hwmon);
    chip.devicePath = StableDevicePath(root.ReadLink(link).ValueOr(""), chip.name);
    if (chip.devicePath.empty()) chip.devicePath = hwmon;
    for (std::string& name : root.Names(chip.folder)) chip.files.insert(std::move(name));
    return chip;
}

TSensor ReadChannel(const TSystemRoot& root, const TChip& chip, const std::string& channel, const TKind& kind,
                    const std::string& file) {
    TSensor sensor;
    sensor.kind = kind.kind;
    sensor.id = chip.devicePath + "/" + channel;
    sensor.chip = chip.name;
    sensor.label = root.ReadText(chip.folder + channel + "_label").ValueOr(channel);
    sensor.reading = ReadScaled(root, chip.folder + file, kind);
    for (const TLimit& limit : kLimits)
        if (const std::string name = channel + std::string(limit.suffix); chip.files.count(name) != 0)
            sensor.*limit.fact = ReadScaled(root, chip.folder + name, kind);
    return sensor;
}

void AddChannels(const TSystemRoot& root, const TChip& chip, const TKind& kind, std::vector<TSensor>& sensors) {
    std::vector<std::pair<std::string, std::string>> channels;
    for (const std::string& file : chip.files) {
        const std::string channel(ChannelOf(file, kind));
        const bool isSecond = EndsWith(file, "_average") && chip.files.count(channel + "_input") != 0;
        if (!channel.empty() && !isSecond) channels.emplace_back(channel, file);
    }
    std::sort(channels.begin(), channels.end(),
              [](const auto& a, const auto& b) { return NaturalLess(a.first, b.first); });
    for (const auto& [channel, file] : channels) sensors.push_back(ReadChannel(root, chip, channel, kind, file));
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
    constexpr std::string_view kDevices = "/devices/";
    const size_t start = link.find(kDevices);
    if (start == std::string::npos) return "";
    std::string_view path = std::string_view(link).substr(start + kDevices.size());
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
    for (const std::string& hwmon : chips.ValueOr({})) {
        const TChip chip = ReadChip(root, hwmon);
        for (const TKind& kind : kKinds) AddChannels(root, chip, kind, facts.sensors);
    }
    AddZones(root, zones.ValueOr({}), facts.sensors);
    MakeIdsUnique(facts.sensors);
    return facts;
}
