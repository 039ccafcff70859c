#include <algorithm>

#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

constexpr const char* kTpms = "/sys/class/tpm";

std::optional<std::string> VersionOf(const std::string& major) {
    if (major == "1") return "1.2";
    if (major == "2") return "2.0";
    return {};
}

// "TPM 2.0 Device"
std::optional<std::string> FindVersion(const std::string& description) {
    for (const char* version : {"2.0", "1.2"})
        if (description.find(version) != std::string::npos) return version;
    return {};
}

// Older kernels tell the version by the words of the firmware, or by files that only the older kind has. Those ask the
// module itself, which may take long, so that none of them is read.
TText ReadVersion(const TSystemRoot& root, const std::string& folder) {
    const TText major = root.ReadText(folder + "/tpm_version_major").Map(VersionOf);
    if (major || IsUnreadable(major)) return major;
    for (const char* name : {"/device/description", "/device/firmware_node/description"})
        if (const TText told = root.ReadText(folder + name).Map(FindVersion)) return told;
    for (const char* name : {"/pcrs", "/device/pcrs"})
        if (root.Exists(folder + name)) return TText::Of("1.2", folder + name);
    return major;
}

// "tpm0", and not "tpm_tis" or "tpmrm0".
bool IsTpm(std::string_view name) {
    return ParseNumber<uint32_t>(name.substr(std::min<size_t>(3, name.size()))).has_value();
}

}  // namespace

void ReadTpms(const TSystemRoot& root, TSystemFacts& facts) {
    const TFact<std::vector<std::string>> names = root.ListKind(kTpms, kTpms);
    facts.tpmListing = ListingOf(names);
    for (const std::string& name : names.ValueOr({})) {
        if (!IsTpm(name)) continue;
        const std::string folder = std::string(kTpms) + '/' + name;
        facts.tpms.push_back({name, ReadVersion(root, folder), root.ReadLinkName(folder + "/device/driver")});
    }
}
