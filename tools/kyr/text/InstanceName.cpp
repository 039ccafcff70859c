#include "text/InstanceName.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "text/Values.h"
#include "text/VisibleText.h"

namespace {

constexpr const char* kTelling[] = {"Caption", "Name", "ElementName", "DeviceID"};

// Empty if there is no such property, or nothing in it.
std::string TextOf(const TCIMInstance& instance, const char* name) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? "" : DisplayText(*property);
}

}  // namespace

std::string NameForPeople(const TCIMInstance& instance) {
    for (const char* name : kTelling)
        if (const std::string text = TextOf(instance, name); !text.empty()) return text;
    std::string text;
    for (const std::string& key : instance.GetClass()->EnumerateKeyNames())
        text += (text.empty() ? "" : ", ") + TextOf(instance, key.c_str());
    return text.empty() ? VisiblePath(instance) : text;
}

std::string VisiblePath(const TCIMInstance& instance) { return VisibleText(instance.BuildPath().GetPath()); }
