#include "render/SummarySystem.h"

#include <algorithm>
#include <vector>

#include "base/Text.h"
#include "kyr/TCIMInstance.h"
#include "render/SummaryPieces.h"

namespace {

using TTexts = std::vector<std::string>;

constexpr uint64_t kSELinuxDisabled = 3;  // of MOLTA_SystemSecurity.SELinuxMode
constexpr uint64_t kNoLockdown = 1;       // of MOLTA_SystemSecurity.Lockdown

void AddWord(const TCIMInstance& security, const char* property, const char* before, TTexts& texts) {
    const std::string word = SummaryValue(security, property);
    if (!word.empty()) texts.push_back(before + LowerCase(word));
}

// The modules that decide what each program may do.
void AddAccessControl(const TCIMInstance& security, TTexts& texts) {
    const uint64_t mode = SummaryNumber(security, "SELinuxMode");
    const bool hasSELinux = mode != 0 && mode != kSELinuxDisabled,
               hasAppArmor = HasBoolean(security, "AppArmorEnabled", true);
    if (hasSELinux) AddWord(security, "SELinuxMode", "SELinux ", texts);
    if (hasAppArmor) texts.emplace_back("AppArmor");
    if (mode == kSELinuxDisabled && HasBoolean(security, "AppArmorEnabled", false))
        texts.emplace_back("neither SELinux nor AppArmor");
}

// "3 containers (1 runs)". Whether they run is not saved where only what stays the same is.
std::string CountText(const TContainer& container, const char* className, const char* one, const char* many) {
    const std::vector<TCIMInstance*> guests = InstancesOf(container, className);
    if (guests.empty()) return "";
    const auto count = [&guests](bool isRunning) {
        return std::count_if(guests.begin(), guests.end(), [isRunning](const TCIMInstance* guest) {
            return HasBoolean(*guest, "Running", isRunning);
        });
    };
    const auto running = count(true);
    const std::string text = std::to_string(guests.size()) + (guests.size() == 1 ? one : many);
    if (running == 0) return count(false) == 0 ? text : text + " (none runs)";
    return text + " (" + std::to_string(running) + (running == 1 ? " runs)" : " run)");
}

}  // namespace

std::string SecurityText(const TCIMInstance& security) {
    TTexts texts;
    AddWord(security, "SecureBoot", "Secure Boot ", texts);
    for (const TCIMInstance* tpm : InstancesOf(*security.GetContainer(), kTpmClass)) {
        const std::string version = SummaryValue(*tpm, "SpecificationVersion");
        texts.push_back(version.empty() ? "TPM" : "TPM " + version);
    }
    AddAccessControl(security, texts);
    if (SummaryNumber(security, "Lockdown") != kNoLockdown) AddWord(security, "Lockdown", "lockdown ", texts);
    if (HasBoolean(security, "FIPSMode", true)) texts.emplace_back("FIPS mode");
    return texts.empty() ? "no Secure Boot, SELinux or AppArmor known" : Join(texts);
}

std::vector<std::string> GuestsTexts(const TContainer& container) {
    const std::string machines = CountText(container, kVirtualMachineClass, " virtual machine", " virtual machines");
    const std::string containers = CountText(container, kHostedContainerClass, " container", " containers");
    TTexts texts;
    for (const std::string& text : {machines, containers})
        if (!text.empty()) texts.push_back(text);
    return texts.empty() ? texts : TTexts{Join(texts)};
}
