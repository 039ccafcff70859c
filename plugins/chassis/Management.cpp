// Controllers by which the computer is managed from outside, such as a BMC, as far as the computer's own side knows
// them.
#include "StructureFields.h"

namespace {

constexpr uint8_t kController = 38;
constexpr size_t kShortestController = 0x10;
constexpr const char* kKernelControllers = "/sys/class/ipmi";

enum EInterface : uint16_t { eKcs = 1, eSmic, eBt, eSsif };
enum EAddressSpace : uint16_t { eMemory = 1, eIo, eSmbus };

THardwareFact ParseInterface(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t, uint16_t>(structure, offset);
}

// A digit each: 0x20 is 2.0.
THardwareFact ParseVersion(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset, {0, 0xFF}).Map([](uint8_t version) {
        return std::optional(std::to_string(version >> 4) + '.' + std::to_string(version & 0xF));
    });
}

// The address without the bit beside it that tells reading from writing.
THardwareFact ParseTargetAddress(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset, {0}).Map([](uint8_t address) {
        return std::optional<uint16_t>(address >> 1);
    });
}

bool IsSsif(const TSmbiosStructure& structure) { return structure.FindNumber<uint8_t>(0x04) == eSsif; }

// The lowest bit tells ports from memory. That of the address itself stands in a byte behind it, which old structures
// lack.
THardwareFact ParseBaseAddress(const TSmbiosStructure& structure, size_t offset) {
    const uint64_t lowest = structure.FindNumber<uint8_t>(0x10).value_or(0) >> 4 & 1;
    return SmbiosNumber<uint64_t>(structure, offset, {0}).Map([&](uint64_t address) {
        return std::optional(IsSsif(structure) ? address >> 1 & 0x7F : (address & ~uint64_t(1)) | lowest);
    });
}

THardwareFact ParseAddressSpace(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint64_t>(structure, offset, {0}).Map([&](uint64_t address) {
        return std::optional<uint16_t>(IsSsif(structure) ? eSmbus : (address & 1) != 0 ? eIo : eMemory);
    });
}

THardwareFact ParseInterrupt(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t, uint32_t>(structure, offset, {0});
}

constexpr TStructureField kFields[] = {
    {"InterfaceType", 0x04, ParseInterface},     {"IPMIVersion", 0x05, ParseVersion},
    {"TargetAddress", 0x06, ParseTargetAddress}, {"BaseAddress", 0x08, ParseBaseAddress},
    {"AddressSpace", 0x08, ParseAddressSpace},   {"Interrupt", 0x11, ParseInterrupt},
};

struct TInterfaceWord {
    std::string_view word;
    EInterface interface;
};

constexpr TInterfaceWord kInterfaces[] = {{"kcs", eKcs}, {"smic", eSmic}, {"bt", eBt}, {"ssif", eSsif}};

std::optional<uint16_t> FindInterface(const std::string& word) {
    for (const TInterfaceWord& entry : kInterfaces)
        if (entry.word == word) return entry.interface;
    return std::nullopt;
}

// What the kernel has of the controller itself, its firmware and its network address, is not read: the kernel would ask
// the controller, which may take seconds.
THardware ReadKernelController(const TSystemRoot& root, const std::string& name) {
    const std::string folder = std::string(kKernelControllers) + '/' + name;
    THardware controller;
    controller.tag = name;
    controller.properties = {{"InterfaceType", root.ReadText(folder + "/device/type").Map(FindInterface)}};
    return controller;
}

}  // namespace

void ParseControllers(const TStructures& structures, TChassisFacts& facts) {
    ForEachOfType(structures, kController, kShortestController, [&](const auto& structure, const std::string& tag) {
        facts.controllers.push_back(ParseHardware(structure, tag, kFields));
    });
}

// Which is which is certain of a single one.
void ReadControllers(const TSystemRoot& root, TChassisFacts& facts) {
    const auto names = root.ListKind(kKernelControllers, kKernelControllers);
    facts.ipmiListing = ListingOf(names);
    THardwareList found;
    for (const std::string& name : names.ValueOr({})) found.push_back(ReadKernelController(root, name));
    if (found.size() == 1 && facts.controllers.size() == 1) {
        facts.controllers.front().tag = found.front().tag;
        found.clear();
    }
    for (THardware& controller : found) facts.controllers.push_back(std::move(controller));
    for (THardware& controller : facts.controllers) controller.caption = "BMC " + controller.tag;
}
