#include "kyr/TCIMSchemaHelper.h"

#include <cctype>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "platform/CoreLog.h"

const std::string TCIMSchemaHelper::kSystemCreationClassName = "MOLTA_ComputerSystem";
const std::string TCIMSchemaHelper::kOperatingSystemCreationClassName = "MOLTA_OperatingSystem";

namespace {

constexpr const char* kBIOSElementClassName = "MOLTA_SystemBIOSElement";
constexpr const char* kProductClassName = "MOLTA_ORQProduct";

struct TModel {
    const char* productName;
    const char* mtm;
};

// Compatibility: names are trimmed before the look-up, so the rows with trailing blanks never match; see
// docs/oddities.md.
constexpr TModel kModels[] = {
    {"Kestrel 3100    ", "4170xxx"}, {"Kestrel 3100", "4170xxx"}, {"Kestrel 3100 M10", "4171xxx"},
    {"Kestrel 3400    ", "4182xxx"}, {"Kestrel 3400", "4182xxx"}, {"Kestrel 6200 M10", "4190xxx"},
    {"Kestrel 3100 M20", "4172xxx"},
};

constexpr const char* kUnknownModel = "xxx";

TCIMValue ReadSole(TContainer* container, const std::string& className, const std::string& propertyName) {
    const TCIMClass* cls = container->FindClass(className);
    if (!cls) throw TKYRException(kyrStatusNotFound);
    const std::vector<TCIMInstance*> instances = cls->EnumerateInstances(true);
    if (instances.size() != 1) throw TKYRException(kyrStatusNotFound);
    const TCIMProperty* property = instances.front()->FindProperty(propertyName);
    if (!property) throw TKYRException(kyrStatusNotFound);
    return property->GetValue();
}

[[noreturn]] void Missing(const std::string& reason) {
    LogCore(kyrLogDebug, "TCIMSchemaHelper: " + reason);
    throw TKYRException(kyrStatusNotFound);
}

/// A string property of the only computer system. Logs and raises if it cannot be had.
std::string ReadSystemText(TContainer* container, const std::string& propertyName) {
    const TCIMClass* cls = container->FindClass(TCIMSchemaHelper::kSystemCreationClassName);
    if (!cls) Missing("no computer system");
    const std::vector<TCIMInstance*> instances = cls->EnumerateInstances(true);
    if (instances.size() != 1) Missing("computer system instances != 1");
    const TCIMProperty* property = instances.front()->FindProperty(propertyName);
    if (!property) Missing("didn't find " + propertyName + " property");
    const TCIMValue value = property->GetValue();
    if (value.IsNull()) Missing(propertyName + " is NULL");
    if (value.GetType() != TCIMValue::TCIMType::eCIMString) Missing(propertyName + " wasn't a string");
    return static_cast<std::string>(value);
}

/// NULL if no firmware instance or no such property is there.
TCIMValue ReadBIOSModel(TContainer* container) {
    const TCIMClass* cls = container->FindClass(kBIOSElementClassName);
    if (!cls) return TCIMValue();
    const std::vector<TCIMInstance*> instances = cls->EnumerateInstances(true);
    if (instances.empty()) return TCIMValue();
    const TCIMProperty* property = instances.front()->FindProperty("MachineTypeModel");
    return property ? property->GetValue() : TCIMValue();
}

bool IsAlphanumeric(const std::string& text, size_t begin, size_t end) {
    if (text.size() < end) return false;
    for (size_t i = begin; i < end; ++i)
        if (!std::isalnum(static_cast<unsigned char>(text[i]))) return false;
    return true;
}

std::string TrimEnd(const std::string& text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

const char* FindModel(const std::string& productName) {
    for (const TModel& model : kModels)
        if (productName == model.productName) return model.mtm;
    return nullptr;
}

bool IsToralName(const std::string& text) {
    return text.size() == 26 && text.compare(0, 18, "Halvex Toral p21-[") == 0 && text[25] == ']' &&
           TCIMSchemaHelper::IsValidMTM(text.substr(18, 7));
}

/// True if "-[" at the position is followed by that many characters and "]-".
bool HasBracketsOf(const std::string& text, size_t open, size_t count) {
    const size_t close = open + 2 + count;
    return text.size() > close + 1 && text.compare(close, 2, "]-") == 0;
}

std::string ReadBrackets(const std::string& text, size_t open) {
    if (HasBracketsOf(text, open, 7) && TCIMSchemaHelper::IsValidMTM(text.substr(open + 2, 7)))
        return text.substr(open + 2, 7);
    if (HasBracketsOf(text, open, 4) && TCIMSchemaHelper::IsValidMachineType(text.substr(open + 2, 4)))
        return text.substr(open + 2, 4) + kUnknownModel;
    throw TKYRException(kyrStatusInvalidFormat);
}

std::string ReadMTM(const std::string& text) {
    const size_t open = text.find("-[");
    if (open != std::string::npos) return ReadBrackets(text, open);
    if (text.size() != 7 || !TCIMSchemaHelper::IsValidMTM(text)) throw TKYRException(kyrStatusInvalidFormat);
    return text;
}

std::string DeriveMTM(const std::string& text) {
    if (const char* mtm = FindModel(text)) return mtm;
    if (IsToralName(text)) return text.substr(18, 7);  // Compatibility: blanks are kept here; see docs/oddities.md.
    const std::string mtm = ReadMTM(text);
    return mtm.compare(4, 3, "   ") == 0 ? mtm.substr(0, 4) + kUnknownModel : mtm;
}

std::string ReadVersion(TContainer* container) {
    const std::string version = TCIMSchemaHelper::GetDataSourceVersion(container);
    if (version.find('.') == std::string::npos) throw TKYRException(kyrStatusNotFound);
    return version;
}

}  // namespace

std::string TCIMSchemaHelper::GetSystemCreationClassName(TContainer*) { return kSystemCreationClassName; }

std::string TCIMSchemaHelper::GetOperatingSystemCreationClassName(TContainer*) {
    return kOperatingSystemCreationClassName;
}

std::string TCIMSchemaHelper::GetSystemName(TContainer* container) {
    return static_cast<std::string>(ReadSole(container, kSystemCreationClassName, "Name"));
}

std::string TCIMSchemaHelper::GetSystemProductName(TContainer* container) {
    return static_cast<std::string>(ReadSole(container, kSystemCreationClassName, "ProductName"));
}

std::string TCIMSchemaHelper::GetOperatingSystemName(TContainer* container) {
    return static_cast<std::string>(ReadSole(container, kOperatingSystemCreationClassName, "Name"));
}

std::string TCIMSchemaHelper::GetOperatingSystemVersion(TContainer* container) {
    return static_cast<std::string>(ReadSole(container, kOperatingSystemCreationClassName, "Version"));
}

unsigned short TCIMSchemaHelper::GetOperatingSystemType(TContainer* container) {
    return static_cast<unsigned short>(ReadSole(container, kOperatingSystemCreationClassName, "OSType"));
}

std::string TCIMSchemaHelper::GetDataSourceVersion(TContainer* container) {
    return static_cast<std::string>(ReadSole(container, kProductClassName, "Version"));
}

bool TCIMSchemaHelper::IsValidMachineType(const std::string& text) { return IsAlphanumeric(text, 0, 4); }

bool TCIMSchemaHelper::IsValidMTM(const std::string& text) {
    if (text.size() < 7 || !IsValidMachineType(text)) return false;
    for (size_t i = 4; i < 7; ++i)
        if (text[i] != ' ' && !IsAlphanumeric(text, i, i + 1)) return false;
    return true;
}

std::string TCIMSchemaHelper::GetRawMTMString(TContainer* container) {
    const TCIMValue model = ReadBIOSModel(container);
    return model.IsNull() ? ReadSystemText(container, "ProductName") : static_cast<std::string>(model);
}

std::string TCIMSchemaHelper::GetMTM(TContainer* container) {
    const std::string mtm = DeriveMTM(TrimEnd(GetRawMTMString(container)));
    LogCore(kyrLogDebug, "TCIMSchemaHelper- Detected MTM " + mtm);
    return mtm;
}

std::string TCIMSchemaHelper::GetMachineType(TContainer* container) { return GetMTM(container).substr(0, 4); }
std::string TCIMSchemaHelper::GetModelNumber(TContainer* container) { return GetMTM(container).substr(4, 3); }

std::string TCIMSchemaHelper::GetRawSerialNumberString(TContainer* container) {
    return ReadSystemText(container, "SerialNumber");
}

std::string TCIMSchemaHelper::GetSerialNumber(TContainer* container) {
    const std::string serial = TrimEnd(GetRawSerialNumberString(container));
    if (serial.size() != 7 || !IsAlphanumeric(serial, 0, 7)) throw TKYRException(kyrStatusInvalidFormat);
    return serial;
}

std::string TCIMSchemaHelper::GetDataSourceMajorVersion(TContainer* container) {
    const std::string version = ReadVersion(container);
    return version.substr(0, version.find('.'));
}

std::string TCIMSchemaHelper::GetDataSourceMinorVersion(TContainer* container) {
    const std::string version = ReadVersion(container);
    const size_t begin = version.find('.') + 1;
    return version.substr(begin,
                          begin);  // Compatibility: cut to the length of the major version; see docs/oddities.md.
}

std::string TCIMSchemaHelper::GetDataSourceBuildVersion(TContainer* container) {
    const std::string version = ReadVersion(container);
    return version.substr(version.rfind('.') + 1);
}
