#include "OsRelease.h"
#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;
using TWord = TFact<uint16_t>;

constexpr const char* kVariables = "/sys/firmware/efi/efivars";
constexpr const char* kGlobal = "-8be4df61-93ca-11d2-aa0d-00e098032b8c";  // of the variables that UEFI itself defines
constexpr const char* kSELinux = "/sys/fs/selinux";
constexpr const char* kOlderSELinux = "/selinux/enforce";  // of Linux before 3.0
constexpr const char* kAppArmor = "/sys/module/apparmor";
constexpr const char* kTaint = "/proc/sys/kernel/tainted";

struct TName {
    std::string_view word;
    uint16_t value;
};

// Without a value for a word that is not known.
template <size_t N>
TWord Find(const TName (&names)[N], const TText& text) {
    return text.Map([&names](const std::string& word) -> std::optional<uint16_t> {
        for (const TName& name : names)
            if (name.word == word) return name.value;
        return std::nullopt;
    });
}

// Four bytes of attributes and one that is 0 or 1.
std::optional<bool> ParseVariable(const std::string& content) {
    const bool isFlag = content.size() == 5 && (content[4] == 0 || content[4] == 1);
    return isFlag ? std::optional(content[4] == 1) : std::nullopt;
}

TFact<bool> ReadVariable(const TSystemRoot& root, const std::string& name) {
    return root.ReadFile(std::string(kVariables) + '/' + name + kGlobal, 64).Map(ParseVariable);
}

// Firmware that cannot do it has no such variable; but neither has a folder in which nothing is mounted.
bool LacksSecureBoot(const TSystemRoot& root, const TFact<bool>& variable) {
    return variable.absence == EAbsence::eNotPresent && !root.Names(kVariables).empty();
}

TWord ReadSecureBoot(const TSystemRoot& root, const TWord& firmware) {
    if (!firmware) return TWord::Missing(firmware.absence, firmware.source);
    if (*firmware == kBootFirmwareBios) return TWord::Of(kSecureBootNotSupported, firmware.source);
    const TFact<bool> isSecure = ReadVariable(root, "SecureBoot");
    if (!isSecure && LacksSecureBoot(root, isSecure)) return TWord::Of(kSecureBootNotSupported, kVariables);
    if (!isSecure) return TWord::Missing(isSecure.absence, isSecure.source);
    if (*isSecure) return TWord::Of(kSecureBootEnabled, isSecure.source);
    const TFact<bool> isSetup = ReadVariable(root, "SetupMode");
    return isSetup.ValueOr(false) ? TWord::Of(kSecureBootSetupMode, isSetup.source)
                                  : TWord::Of(kSecureBootDisabled, isSecure.source);
}

constexpr TName kLockdowns[] = {{"none", 1}, {"integrity", 2}, {"confidentiality", 3}};

// The word in brackets of "none [integrity] confidentiality".
std::optional<std::string> FindChosen(const std::string& words) {
    const size_t start = words.find('['), end = words.find(']');
    if (start == std::string::npos || end == std::string::npos || end < start) return {};
    return words.substr(start + 1, end - start - 1);
}

std::optional<std::vector<std::string>> SplitModules(const std::string& text) {
    const std::vector<std::string_view> names = Split(text, ',');
    return std::vector<std::string>(names.begin(), names.end());
}

constexpr TName kEnforcing[] = {{"1", kSELinuxEnforcing}, {"0", kSELinuxPermissive}};
constexpr TName kConfigured[] = {
    {"enforcing", kSELinuxEnforcing}, {"permissive", kSELinuxPermissive}, {"disabled", kSELinuxDisabled}};

// The kernel makes the folder if SELinux was not disabled when it started.
TWord ReadSELinuxMode(const TSystemRoot& root) {
    if (!root.LacksKind(kSELinux)) return Find(kEnforcing, root.ReadText(std::string(kSELinux) + "/enforce"));
    const TWord older = Find(kEnforcing, root.ReadText(kOlderSELinux));
    return older || IsUnreadable(older) ? older : TWord::Of(kSELinuxDisabled, kSELinux);
}

void ReadSELinux(const TSystemRoot& root, TSecurityFacts& security) {
    security.selinuxMode = ReadSELinuxMode(root);
    const TText file = root.ReadFile("/etc/selinux/config");
    security.selinuxConfiguredMode = Find(kConfigured, FindOsReleaseValue(file, "SELINUX"));
    security.selinuxPolicy = FindOsReleaseValue(file, "SELINUXTYPE");
}

TFact<bool> ReadAppArmor(const TSystemRoot& root) {
    if (root.LacksKind(kAppArmor)) return TFact<bool>::Of(false, kAppArmor);
    const TText enabled = root.ReadText(std::string(kAppArmor) + "/parameters/enabled");
    return enabled.Map([](const std::string& text) { return std::optional(text == "Y"); });
}

// Lines such as "/usr/sbin/cupsd (enforce)".
void ReadAppArmorProfiles(const TSystemRoot& root, TSecurityFacts& security) {
    const TText profiles = root.ReadFile("/sys/kernel/security/apparmor/profiles");
    const auto count = [&profiles](std::string_view end) {
        return profiles.Map([end](const std::string& text) {
            uint32_t number = 0;
            for (const std::string_view line : Lines(text)) number += EndsWith(line, end) ? 1 : 0;
            return std::optional(number);
        });
    };
    security.appArmorProfiles = count(")");
    security.appArmorEnforced = count(" (enforce)");
}

// A kernel that was built without the mode has no such file, and mostly no such folder.
TFact<bool> ReadFips(const TSystemRoot& root) {
    constexpr const char *kFolder = "/proc/sys/crypto", *kFile = "/proc/sys/crypto/fips_enabled";
    for (const char* path : {kFolder, kFile})
        if (root.LacksKind(path)) return TFact<bool>::Of(false, path);
    return root.ReadFlag(kFile);
}

std::optional<std::vector<uint16_t>> BitsOf(const std::string& text) {
    const std::optional<uint64_t> mask = ParseNumber<uint64_t>(text);
    if (!mask) return {};
    std::vector<uint16_t> bits;
    for (uint16_t bit = 0; bit < 64; ++bit)
        if ((*mask >> bit & 1) != 0) bits.push_back(bit);
    return bits;
}

}  // namespace

void ReadSecurity(const TSystemRoot& root, TSystemFacts& facts) {
    TSecurityFacts& security = facts.security;
    security.secureBoot = ReadSecureBoot(root, facts.bootFirmware);
    security.lockdown = Find(kLockdowns, root.ReadText("/sys/kernel/security/lockdown").Map(FindChosen));
    security.modules = root.ReadText("/sys/kernel/security/lsm").Map(SplitModules);
    ReadSELinux(root, security);
    security.isAppArmorEnabled = ReadAppArmor(root);
    if (security.isAppArmorEnabled.ValueOr(false)) ReadAppArmorProfiles(root, security);
    security.isFips = ReadFips(root);
    security.taint = root.ReadText(kTaint).Map(BitsOf);
    security.listing = ListingOf(security.taint);
}
