#include "model/SpokenNames.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "base/ExitStatus.h"
#include "base/NearMatches.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"
#include "model/ReadingOrder.h"
#include "model/Values.h"

namespace {

using TClasses = std::vector<TCIMClass*>;
using TInstances = std::vector<TCIMInstance*>;

/// A usual word, in the form that SpokenForm gives, and what it means. Where none of the classes is known, a later row
/// of the same word counts. docs/names.md has the same table.
struct TUsualWord {
    const char* word;
    std::vector<const char*> classes;
    const char* property = "";
    const char* value = "";
};

const TUsualWord kUsualWords[] = {
    {"adapter", {"CIM_NetworkPort"}},
    {"address", {"CIM_IPProtocolEndpoint"}},
    {"bay", {"MOLTA_DriveBay"}},
    {"bios", {"CIM_BIOSElement"}},
    {"bmc", {"MOLTA_ManagementController", "MOLTA_RedfishHostInterface"}},
    {"board", {"MOLTA_BaseBoard"}},
    {"cache", {"CIM_CacheMemory"}},
    {"computer", {"CIM_ComputerSystem"}},
    {"container", {"MOLTA_HostedContainer"}},
    {"core", {"CIM_ProcessorCore"}},
    {"cpu", {"CIM_Processor"}},
    {"dimm", {"CIM_PhysicalMemory"}},
    {"disk", {"CIM_DiskDrive"}},
    {"dns", {"MOLTA_DNSSettings"}},
    {"drive", {"CIM_DiskDrive"}},
    {"firmware", {"CIM_BIOSElement", "MOLTA_FirmwareResource"}},
    {"fs", {"CIM_FileSystem"}},
    {"gpu", {"CIM_DisplayController"}},
    {"gpu", {"CIM_PCIDevice"}, "ClassCode", "3"},
    {"graphic", {"CIM_DisplayController", "MOLTA_VideoConnector", "CIM_Display"}},
    {"graphic", {"CIM_PCIDevice"}, "ClassCode", "3"},
    {"guest", {"MOLTA_VirtualMachine", "MOLTA_HostedContainer"}},
    {"hdd", {"CIM_DiskDrive"}, "Rotational", "true"},
    {"health", {"MOLTA_DiskHealth"}},
    {"interface", {"CIM_NetworkPort"}},
    {"ip", {"CIM_IPProtocolEndpoint"}},
    {"listening", {"MOLTA_ListeningSocket", "MOLTA_UnixListeningSocket"}},
    {"mainboard", {"MOLTA_BaseBoard"}},
    {"memory", {"MOLTA_SystemMemory", "CIM_PhysicalMemory", "MOLTA_MemoryArray"}},
    {"module", {"MOLTA_KernelModule"}},
    {"motherboard", {"MOLTA_BaseBoard"}},
    {"network", {"CIM_NetworkPort", "CIM_IPProtocolEndpoint", "CIM_NextHopRoute"}},
    {"nic", {"CIM_NetworkPort"}},
    {"numa", {"MOLTA_NUMANode"}},
    {"os", {"CIM_OperatingSystem"}},
    {"package", {"MOLTA_Package"}},
    {"partition", {"CIM_MediaPartition"}},
    {"pci", {"CIM_PCIDevice"}},
    {"ram", {"MOLTA_SystemMemory", "CIM_PhysicalMemory", "MOLTA_MemoryArray"}},
    {"repo", {"MOLTA_Repository"}},
    {"screen", {"CIM_Display"}},
    {"security", {"MOLTA_SystemSecurity", "MOLTA_TPM"}},
    {"smart", {"MOLTA_DiskHealth", "MOLTA_SMARTAttribute"}},
    {"socket", {"MOLTA_ListeningSocket", "MOLTA_UnixListeningSocket"}},
    {"ssd", {"CIM_DiskDrive"}, "Rotational", "false"},
    {"swap", {"MOLTA_SwapArea"}},
    {"system", {"CIM_ComputerSystem"}},
    {"temperature", {"MOLTA_TemperatureSensor"}},
    {"thread", {"CIM_HardwareThread"}},
    {"update", {"MOLTA_PendingUpdate", "MOLTA_UpdateState"}},
    {"usb", {"CIM_USBDevice"}},
    {"user", {"CIM_Account"}},
    {"vm", {"MOLTA_VirtualMachine"}},
    {"volume", {"MOLTA_StorageVolume"}},
    {"vulnerability", {"MOLTA_ProcessorVulnerability"}},
};

std::string WithoutPlural(const std::string& text) {
    if (EndsWith(text, "ies")) return text.substr(0, text.size() - 3) + "y";
    if (EndsWith(text, "sses")) return text.substr(0, text.size() - 2);
    return EndsWith(text, "s") && !EndsWith(text, "ss") && text.size() > 2 ? text.substr(0, text.size() - 1) : text;
}

// The form in which names are compared: "Disk_Drives" and "disk-drive" are "diskdrive".
std::string SpokenForm(const std::string& name) {
    std::string form;
    for (const char c : name)
        if (c != '-' && c != '_') form += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return WithoutPlural(form);
}

// The one class below that can have instances, if there is only one: what it declares is more than what the other does.
TCIMClass* ConcreteOf(TCIMClass* cls) {
    if (!cls->IsAbstract()) return cls;
    TClasses below = cls->EnumerateSubClasses(true);
    below.erase(std::remove_if(below.begin(), below.end(), [](const TCIMClass* each) { return each->IsAbstract(); }),
                below.end());
    return below.size() == 1 ? below.front() : cls;
}

TClasses AllClasses(const TContainer& schema) { return schema.GetRootClass()->EnumerateSubClasses(true); }

bool IsOneOf(const TClasses& classes, const TCIMClass* cls) {
    return std::find(classes.begin(), classes.end(), cls) != classes.end();
}

bool HasAncestorIn(const TClasses& classes, const TCIMClass& cls) {
    for (const TCIMClass* above = cls.GetSuperClass(); above != nullptr; above = above->GetSuperClass())
        if (IsOneOf(classes, above)) return true;
    return false;
}

TClasses UppermostOf(const TClasses& classes) {
    TClasses uppermost;
    for (TCIMClass* cls : classes)
        if (!HasAncestorIn(classes, *cls)) uppermost.push_back(cls);
    return uppermost;
}

TSpokenClass FindUsualWord(const TContainer& schema, const std::string& form) {
    TSpokenClass found;
    for (const TUsualWord& usual : kUsualWords) {
        if (form != WithoutPlural(usual.word) || !found.classes.empty()) continue;
        for (const char* name : usual.classes)
            if (TCIMClass* const cls = FindClassNamed(schema, name)) found.classes.push_back(cls);
        found.property = usual.property;
        found.value = usual.value;
    }
    return found;
}

// A name with a prefix is that of a class of its schema alone.
TClasses ClassesCalled(const TContainer& schema, const std::string& name) {
    const std::string form = SpokenForm(name);
    TClasses called;
    for (TCIMClass* cls : AllClasses(schema)) {
        const std::string own = cls->GetName();
        if (SpokenForm(own) == form || SpokenForm(SpokenNameOf(own)) == form) called.push_back(cls);
    }
    return UppermostOf(called);
}

/// The name that was asked for, with and without the folder of device files.
struct TInstanceName {
    explicit TInstanceName(const std::string& name)
        : whole(name), shorter(StartsWith(name, "/dev/") ? name.substr(5) : name) {}

    const std::string whole;
    const std::string shorter;
};

bool IsEqual(const std::string& a, const std::string& b, bool exact) { return exact ? a == b : IsSameName(a, b); }

bool HasText(const TCIMInstance& instance, const char* property, const std::string& text, bool exact) {
    const TCIMProperty* const found = instance.FindProperty(property);
    return found != nullptr && !found->GetValue().IsNull() && IsEqual(PlainText(found->GetValue()), text, exact);
}

bool IsCalledByKey(const TCIMInstance& instance, const std::string& name, bool exact) {
    const std::vector<std::string> keys = instance.GetClass()->EnumerateKeyNames();
    return std::any_of(keys.begin(), keys.end(), [&](const std::string& key) {
        return !IsScopeKey(key) && HasText(instance, key.c_str(), name, exact);
    });
}

using TNaming = bool (*)(const TCIMInstance&, const TInstanceName&, bool exact);

// The properties by which an instance may be called, the surest first. A file system has the name of its device: what
// is called so is the device.
constexpr TNaming kNamings[] = {
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        return HasText(instance, "Name", name.shorter, exact);
    },
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        return HasText(instance, "DeviceID", name.whole, exact) ||
               HasText(instance, "DeviceID", "/dev/" + name.shorter, exact) ||
               HasText(instance, "DeviceID", "/dev/mapper/" + name.shorter, exact);
    },
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        return HasText(instance, "Name", name.whole, exact);
    },
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        return HasText(instance, "ElementName", name.whole, exact);
    },
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        return HasText(instance, "Caption", name.whole, exact);
    },
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        return IsCalledByKey(instance, name.whole, exact);
    },
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        const std::vector<std::string> columns = QualifierTexts(*instance.GetClass(), "Columns");
        return !columns.empty() && HasText(instance, columns.front().c_str(), name.whole, exact);
    },
    [](const TCIMInstance& instance, const TInstanceName& name, bool exact) {
        return HasText(instance, "SerialNumber", name.whole, exact);
    },
};

TInstances OrdinaryInstances(const TContainer& container) {
    TInstances instances;
    for (const TCIMClass* cls : SelectAllClasses(container)) {
        if (cls->IsAssociation()) continue;
        const TInstances own = cls->EnumerateInstances(false);
        instances.insert(instances.end(), own.begin(), own.end());
    }
    return instances;
}

// A path without the keys that are the same for all instances of the class, which kyr takes as well as a whole one.
std::string ShortPathOf(const TCIMInstance& instance) {
    std::vector<std::string> keys;
    for (const std::string& name : instance.GetClass()->EnumerateKeyNames()) {
        const TCIMProperty* const key = IsScopeKey(name) ? nullptr : instance.FindProperty(name);
        if (key != nullptr) keys.push_back(name + "=\"" + PlainText(key->GetValue()) + "\"");
    }
    return keys.empty() ? VisiblePath(instance) : VisibleText(instance.GetClass()->GetName()) + "." + Join(keys, ",");
}

constexpr size_t kMostNamed = 5;

}  // namespace

TSpokenClass FindSpokenClass(const TContainer& schema, const std::string& name) {
    if (TCIMClass* const exact = FindClassNamed(schema, name)) return {{exact}, "", ""};
    TSpokenClass usual = FindUsualWord(schema, SpokenForm(name));
    if (!usual.classes.empty()) return usual;
    TClasses called = ClassesCalled(schema, name);
    if (called.size() > 1)
        throw TCommandError(eExitUsage, "class '" + name + "' may be any of " + Join(NamesOf(called), " or "));
    return {std::move(called), "", ""};
}

TCIMClass* FindOneSpokenClass(const TContainer& schema, const std::string& name) {
    if (TCIMClass* const exact = FindClassNamed(schema, name)) return exact;
    const TClasses classes = FindSpokenClass(schema, name).classes;
    if (classes.size() <= 1) return classes.empty() ? nullptr : ConcreteOf(classes.front());
    throw TCommandError(eExitUsage, "'" + name + "' means several classes: " + Join(NamesOf(classes)));
}

TInstances FindSpokenInstances(const TContainer& container, const std::string& name) {
    const TInstances instances = OrdinaryInstances(container);
    const TInstanceName spoken(name);
    for (const bool exact : {true, false})
        for (const TNaming isCalled : kNamings) {
            TInstances found;
            std::copy_if(instances.begin(), instances.end(), std::back_inserter(found),
                         [&](const TCIMInstance* instance) { return isCalled(*instance, spoken, exact); });
            if (!found.empty()) return found;
        }
    return {};
}

TCIMInstance* FindSpokenInstance(const TContainer& container, const std::string& name) {
    const TInstances found = FindSpokenInstances(container, name);
    if (found.size() <= 1) return found.empty() ? nullptr : found.front();
    throw TCommandError(eExitUsage,
                        "'" + name + "' may be any of " + std::to_string(found.size()) + ": " + ListOfPaths(found));
}

std::vector<std::string> NamesLike(const TContainer& schema, const std::string& name) {
    std::vector<std::string> names = NamesOf(AllClasses(schema));
    if (name.find('_') != std::string::npos) return names;
    for (std::string& each : names) each = SpokenNameOf(each);
    for (const TUsualWord& usual : kUsualWords) names.emplace_back(usual.word);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

void RefuseUnknownName(const TContainer& container, const std::string& name) {
    constexpr size_t kMostCompared = 2000;  // more would take too long
    std::vector<std::string> names = NamesLike(container, name);
    const bool isPath = name.find('/') != std::string::npos;
    for (const TCIMInstance* instance : OrdinaryInstances(container)) {
        if (names.size() >= kMostCompared) break;
        const TCIMProperty* const own = instance->FindProperty("Name");
        const std::string text = own == nullptr || own->GetValue().IsNull() ? "" : PlainText(own->GetValue());
        if (!text.empty() && (isPath || text.find('/') == std::string::npos)) names.push_back(text);
    }
    throw TCommandError(
        eExitUsage, "nothing is called '" + name + "': no file, no class and no instance" + DidYouMean(name, names));
}

std::string SpokenNameOf(const std::string& className) {
    const size_t schema = className.find('_');
    return schema == std::string::npos ? className : className.substr(schema + 1);
}

std::string ListOfPaths(const TInstances& instances) {
    std::vector<std::string> paths;
    for (size_t i = 0; i < instances.size() && i < kMostNamed; ++i) paths.push_back(ShortPathOf(*instances[i]));
    if (instances.size() > kMostNamed) paths.emplace_back("others");
    return Join(paths, " or ");
}
