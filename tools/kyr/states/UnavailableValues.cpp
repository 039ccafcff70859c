#include "states/UnavailableValues.h"

#include <vector>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"

namespace {

constexpr size_t kTold = 3;

// Each entry is "property: reason: source".
bool IsMissed(const std::string& entry) {
    for (const char* reason : {": no permission", ": read error"})
        if (entry.find(reason) != std::string::npos) return true;
    return false;
}

void AddMissed(const TCIMInstance& instance, std::vector<std::string>& missed) {
    const TCIMProperty* const property = instance.FindProperty("UnavailableValues");
    if (property == nullptr || property->GetValue().IsNull() || !property->IsArray()) return;
    for (const std::string& entry : property->ToStringVector())
        if (IsMissed(entry)) missed.push_back(entry);
}

}  // namespace

std::string TellUnavailableValues(const TCIMClass& cls) {
    if (cls.FindPropertyDecl("UnavailableValues") == nullptr) return "";
    std::vector<std::string> missed;
    for (const TCIMInstance* instance : cls.EnumerateInstances(false)) AddMissed(*instance, missed);
    std::string text;
    for (size_t i = 0; i < missed.size() && i < kTold; ++i) text += (i == 0 ? "" : "; ") + missed[i];
    return missed.size() <= kTold ? text : text + "; and " + std::to_string(missed.size() - kTold) + " more";
}
