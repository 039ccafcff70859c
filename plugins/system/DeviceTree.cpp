#include <algorithm>
#include <iterator>

#include "Placeholder.h"
#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

/// The same tree. A recorded machine may have either.
constexpr const char* kTrees[] = {"/sys/firmware/devicetree/base/", "/proc/device-tree/"};
constexpr size_t kPropertyLimit = 4096;

struct TKind {
    std::string_view word;
    uint16_t chassisType;
};

constexpr TKind kKinds[] = {{"desktop", 3}, {"laptop", 9},  {"handset", 11},     {"watch", 11},
                            {"server", 17}, {"tablet", 30}, {"convertible", 31}, {"embedded", 34}};

std::optional<uint16_t> FindKind(const std::string& word) {
    const auto found =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const TKind& kind) { return kind.word == word; });
    return found == std::end(kKinds) ? std::nullopt : std::optional(found->chassisType);
}

// The first text of a property, each of which ends with a NUL.
TText ReadProperty(const TSystemRoot& root, const std::string& path) {
    TText text = root.ReadFile(path, kPropertyLimit);
    if (text) text.value = std::string(Trim(text->substr(0, text->find('\0'))));
    if (text && text->empty()) text.value.reset();
    return text;
}

// This maker begins model and serial number with its name. Others have names of models with a comma in them.
constexpr std::string_view kMaker = "IBM", kMakerPrefix = "IBM,";

bool HasMaker(const std::string& text) { return text.compare(0, kMakerPrefix.size(), kMakerPrefix) == 0; }

std::optional<std::string> WithoutMaker(const std::string& text) {
    return HasMaker(text) ? text.substr(kMakerPrefix.size()) : text;
}

// "raspberrypi" of "raspberrypi,4-model-b". Makers are registered in lower case.
std::optional<std::string> FindMaker(const std::string& text) {
    const std::string maker = text.substr(0, text.find(','));
    const bool isMaker = maker.size() < text.size() &&
                         maker.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == std::string::npos;
    return isMaker && !maker.empty() ? std::optional(maker) : std::nullopt;
}

TText FirstOf(const TText& first, const TText& second) { return first ? first : Otherwise(first, second); }

TText ReadManufacturer(const TSystemRoot& root, const std::string& tree, const TText& model) {
    const TText vendor = ReadProperty(root, tree + "vendor");
    if (vendor) return vendor;
    if (model && HasMaker(*model)) return TText::Of(std::string(kMaker), model.source);
    return ReadProperty(root, tree + "compatible").Map(FindMaker);
}

// "Serial          : 10000000a1b2c3d4" at the end of a list of processors.
std::optional<std::string> FindSerialLine(const std::string& text) {
    for (const std::string_view line : Lines(text)) {
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos && Trim(line.substr(0, colon)) == "Serial")
            return std::string(Trim(line.substr(colon + 1)));
    }
    return std::nullopt;
}

// Boards without a number of their own have zeros.
TText WithoutPlaceholder(TText text) {
    if (text && IsPlaceholder(*text)) text.value.reset();
    return text;
}

TText ReadSerialNumber(const TSystemRoot& root, const std::string& tree) {
    const TText serial = WithoutPlaceholder(
        FirstOf(ReadProperty(root, tree + "serial-number"), ReadProperty(root, tree + "system-id")).Map(WithoutMaker));
    if (serial) return serial;
    const TText line = WithoutPlaceholder(root.ReadFile("/proc/cpuinfo").Map(FindSerialLine));
    return line ? line : serial;
}

void ReadTree(const TSystemRoot& root, const std::string& tree, TSystemFacts& facts) {
    const TText model = ReadProperty(root, tree + "model");
    facts.manufacturer = ReadManufacturer(root, tree, model);
    facts.productName = model.Map(WithoutMaker);
    facts.serialNumber = ReadSerialNumber(root, tree);
    facts.chassisType = ReadProperty(root, tree + "chassis-type").Map(FindKind);
    facts.boardVendor = facts.manufacturer;
    facts.boardName = facts.productName;
}

}  // namespace

void ReadDeviceTree(const TSystemRoot& root, TSystemFacts& facts) {
    if (facts.manufacturer || facts.productName || IsUnreadable(facts.productName)) return;
    for (const char* const tree : kTrees)
        if (root.Exists(std::string(tree) + "compatible") || root.Exists(std::string(tree) + "model"))
            return ReadTree(root, tree, facts);
}
