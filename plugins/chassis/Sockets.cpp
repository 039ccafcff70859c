// Sockets for processors, the processors in them as the firmware sees them, and their caches.
#include <algorithm>
#include <map>
#include <set>

#include "StructureFields.h"

namespace {

constexpr uint8_t kProcessor = 4, kCache = 7;
constexpr size_t kShortestProcessor = 0x1A, kShortestCache = 0x0F;
constexpr size_t kStatus = 0x18;
constexpr size_t kCacheHandles[] = {0x1A, 0x1C, 0x1E};
constexpr uint64_t kKilo = 1024;
constexpr const char* kProcessors = "/sys/devices/system/cpu";

THardwareFact ParseProcessorState(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t status) {
        return std::optional<uint16_t>(status & 7);
    });
}

// In tenths of a volt, or in old structures a set of possible voltages, of which only a single one is certain.
THardwareFact ParseVoltage(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset, {0, 0x80}).Map([](uint8_t number) -> std::optional<double> {
        if ((number & 0x80) != 0) return (number & 0x7F) / 10.0;
        if (number == 1) return 5.0;
        if (number == 2) return 3.3;
        return number == 4 ? std::optional(2.9) : std::nullopt;
    });
}

THardwareFact ParseMegaHertz(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint16_t, uint32_t>(structure, offset, {0});
}

// A count above 254 is in a field of two bytes.
template <size_t kWide>
THardwareFact ParseCount(const TSmbiosStructure& structure, size_t offset) {
    if (structure.FindNumber<uint8_t>(offset) == 0xFF && structure.FindNumber<uint16_t>(kWide))
        return SmbiosNumber<uint16_t, uint32_t>(structure, kWide, {0, 0xFFFF});
    return SmbiosNumber<uint8_t, uint32_t>(structure, offset, {0});
}

/// Of every socket.
constexpr TStructureField kSocketFields[] = {
    {"SocketDesignation", 0x04, ParseText},
    {"Populated", kStatus, ParseBit<6>},
    {"SocketType", 0x19, ParseWord},
    {"ProcessorType", 0x05, ParseWord},
};

/// Of a socket with a processor.
constexpr TStructureField kProcessorFields[] = {
    {"Manufacturer", 0x07, ParseText},
    {"Model", 0x10, ParseText},
    {"ProcessorState", kStatus, ParseProcessorState},
    {"Voltage", 0x11, ParseVoltage},
    {"ExternalClock", 0x12, ParseMegaHertz},
    {"MaxSpeed", 0x14, ParseMegaHertz},
    {"BootSpeed", 0x16, ParseMegaHertz},
    {"SerialNumber", 0x20, ParseText},
    {"AssetTag", 0x21, ParseText},
    {"PartNumber", 0x22, ParseText},
    {"Cores", 0x23, ParseCount<0x2A>},
    {"EnabledCores", 0x24, ParseCount<0x2C>},
    {"Threads", 0x25, ParseCount<0x2E>},
};

// Bits of the configuration of a cache.

THardwareFact ParseLevel(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t bits) {
        return std::optional<uint16_t>((bits & 7) + 1);
    });
}

// 3 means unknown in both.

THardwareFact ParseLocation(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t bits) {
        return std::optional<uint16_t>(bits >> 5 & 3);
    });
}

THardwareFact ParseMode(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t bits) { return std::optional<uint16_t>(bits & 3); });
}

// In kilobytes, or in units of 64 kilobytes if the highest bit is set. A size above 15 bits is in an extended field.
template <size_t kWide>
THardwareFact ParseSize(const TSmbiosStructure& structure, size_t offset) {
    if (structure.FindNumber<uint16_t>(offset) == 0xFFFF)
        return SmbiosNumber<uint32_t>(structure, kWide).Map([](uint64_t size) {
            return std::optional((size & 0x7FFFFFFF) * ((size & 0x80000000) != 0 ? 64 : 1) * kKilo);
        });
    return SmbiosNumber<uint16_t>(structure, offset).Map([](uint64_t size) {
        return std::optional((size & 0x7FFF) * ((size & 0x8000) != 0 ? 64 : 1) * kKilo);
    });
}

THardwareFact ParseSramTypes(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint16_t>(structure, offset, {0}).Map([](uint16_t bits) {
        std::vector<uint16_t> types;
        for (uint16_t bit = 0; bit < 7; ++bit)
            if ((bits >> bit & 1) != 0) types.push_back(bit);
        return types.empty() ? std::nullopt : std::optional(types);
    });
}

constexpr TStructureField kCacheFields[] = {
    {"CacheDesignation", 0x04, ParseText},    {"Level", 0x05, ParseLevel},
    {"CacheType", 0x11, ParseWord},           {"Socketed", 0x05, ParseBit<3>},
    {"Location", 0x05, ParseLocation},        {"Enabled", 0x05, ParseBit<7>},
    {"WritePolicy", 0x06, ParseMode},         {"MaximumSize", 0x07, ParseSize<0x13>},
    {"InstalledSize", 0x09, ParseSize<0x17>}, {"SRAMTypes", 0x0D, ParseSramTypes},
    {"ErrorCorrection", 0x10, ParseWord},     {"Associativity", 0x12, ParseWord},
};

bool IsPopulated(const THardware& socket) { return std::get<TFact<bool>>(*socket.Find("Populated")).ValueOr(true); }

THardware ParseSocket(const TSmbiosStructure& structure, const std::string& tag) {
    THardware socket = ParseHardware(structure, tag, kSocketFields);
    const std::string name = socket.Text("SocketDesignation");
    socket.caption = "Processor socket " + (name.empty() ? tag : name);
    if (!IsPopulated(socket)) return socket;
    for (THardwareProperty& property : ParseHardware(structure, tag, kProcessorFields).properties)
        socket.properties.push_back(std::move(property));
    return socket;
}

// The packages that processors are in. A kernel of one processor without topology has package 0.
std::set<uint32_t> ReadPackages(const TSystemRoot& root) {
    std::set<uint32_t> packages;
    for (const std::string& name : root.Names(kProcessors))
        if (const auto id =
                root.ReadNumber<uint32_t>(std::string(kProcessors) + '/' + name + "/topology/physical_package_id"))
            packages.insert(*id);
    return packages;
}

}  // namespace

void ParseSockets(const TStructures& structures, TChassisFacts& facts) {
    std::map<uint16_t, std::string> owners;  // of caches, by handle
    ForEachOfType(structures, kProcessor, kShortestProcessor, [&](const auto& structure, const std::string& tag) {
        facts.sockets.push_back(ParseSocket(structure, tag));
        if (!IsPopulated(facts.sockets.back())) return;
        for (const size_t offset : kCacheHandles)
            if (const auto handle = structure.template FindNumber<uint16_t>(offset)) owners.emplace(*handle, tag);
    });
    ForEachOfType(structures, kCache, kShortestCache, [&](const auto& structure, const std::string& tag) {
        THardware cache = ParseHardware(structure, tag, kCacheFields);
        const std::string name = cache.Text("CacheDesignation");
        cache.caption = name.empty() ? "Cache " + tag : name;
        if (const auto owner = owners.find(cache.handle); owner != owners.end()) cache.owner = owner->second;
        facts.caches.push_back(std::move(cache));
    });
}

// Firmware and kernel number processors each in their own way, so that only a single one in a single socket is certain
// to be the same.
void ReadSocketProcessors(const TSystemRoot& root, TChassisFacts& facts) {
    facts.processorListing = ListingOf(root.List(kProcessors));
    std::vector<THardware*> populated;
    for (THardware& socket : facts.sockets)
        if (IsPopulated(socket)) populated.push_back(&socket);
    if (populated.size() != 1) return;
    const std::set<uint32_t> packages = ReadPackages(root);
    if (packages.size() == 1) populated.front()->devices = {"socket" + std::to_string(*packages.begin())};
}
