#include <CLI/App.hpp>
#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "base/Text.h"
#include "command/Command.h"
#include "command/IdentityFacts.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "model/Provenance.h"
#include "model/Values.h"
#include "states/HostIdentity.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kColumn = 24;
constexpr size_t kLeastValueWidth = 20;

constexpr const char* kSystem = kHostClass;
constexpr const char* kOperatingSystem = "MOLTA_OperatingSystem";
constexpr const char* kProduct = "MOLTA_ORQProduct";

/// A fact to print: the property that tells it, and the core's function that finds it; null: it is the first value.
struct TFact {
    const char* label;
    const char* name;  // the key in JSON
    std::string (*get)(TContainer*);
    const char* className;
    const char* property;
};

constexpr TFact kFacts[] = {
    {"System name", "systemName", TCIMSchemaHelper::GetSystemName, kSystem, "Name"},
    {"Product", "product", TCIMSchemaHelper::GetSystemProductName, kSystem, "ProductName"},
    {"Machine type and model", "machineTypeModel", TCIMSchemaHelper::GetMTM, kSystem, "ProductName"},
    {"Machine type", "machineType", TCIMSchemaHelper::GetMachineType, kSystem, "ProductName"},
    {"Model", "model", TCIMSchemaHelper::GetModelNumber, kSystem, "ProductName"},
    {"Serial number", "serialNumber", TCIMSchemaHelper::GetSerialNumber, kSystem, "SerialNumber"},
    {"Machine ID", "machineId", nullptr, kSystem, "MachineID"},
    {"Operating system", "operatingSystem", TCIMSchemaHelper::GetOperatingSystemName, kOperatingSystem, "Name"},
    {"Version", "version", TCIMSchemaHelper::GetOperatingSystemVersion, kOperatingSystem, "Version"},
    {"Point release", "pointRelease", nullptr, kOperatingSystem, "PointRelease"},
    {"Kernel release", "kernelRelease", nullptr, kOperatingSystem, "KernelRelease"},
    {"Boot firmware", "bootFirmware", nullptr, kOperatingSystem, "BootFirmware"},
    {"Data source version", "dataSourceVersion", TCIMSchemaHelper::GetDataSourceVersion, kProduct, "Version"},
};

// The classes of those properties, and the class of the BIOS, from which the core may take the machine type.
const std::vector<std::string> kClasses = {kSystem, kOperatingSystem, "MOLTA_SystemBIOSElement", kProduct};

std::vector<TCIMInstance*> InstancesFor(const TFact& fact, const TContainer& container) {
    const TCIMClass* const cls = container.FindClass(fact.className);
    return cls == nullptr ? std::vector<TCIMInstance*>() : cls->EnumerateInstances(true);
}

// What it means that an instance without a reason of its own has no value.
TReason NullMeaningFor(const TFact& fact, const TCIMInstance& instance) {
    const TCIMProperty* const property = instance.FindProperty(fact.property);
    const std::string meaning = property == nullptr ? "" : NullMeaningOf(property->GetDeclaration());
    TReason reason = ReasonFor(CodeOfAbsence(meaning));
    if (const size_t colon = meaning.find(": "); colon != std::string::npos) reason.file = meaning.substr(colon + 2);
    return reason;
}

// The reason that the plugin or its document gave for the missing property; none if they gave none.
TReason FindAbsence(const TFact& fact, const TContainer& container) {
    const std::vector<TCIMInstance*> instances = InstancesFor(fact, container);
    for (const TCIMInstance* instance : instances)
        for (const TReason& absence : AbsencesOf(*instance))
            if (IsSameName(absence.property, fact.property)) return absence;
    return instances.empty() ? TReason() : NullMeaningFor(fact, *instances.front());
}

TReason ReasonForStatus(kyrStatusCode status) {
    switch (status) {
        case kyrStatusNotFound:
            return ReasonFor(EReason::eNotCollected);
        case kyrStatusValueIsNULL:
            return ReasonFor(EReason::eNotReported);
        case kyrStatusInvalidFormat:
            return ReasonFor(EReason::eBadFormat);
        default:
            return ReasonFor(EReason::eErrorLogged, kyrTranslateStatusCode(status));
    }
}

TReason WhyMissing(const TFact& fact, kyrStatusCode status, const TContainer& container) {
    const TReason absence = FindAbsence(fact, container);
    TReason reason = absence ? absence : ReasonForStatus(status);
    reason.className = fact.className;
    reason.property = fact.property;
    return reason;
}

// A text by which the host is known stands in the collection too, where a choice of classes left the system out.
std::string FindInCollection(const TFact& fact, const TContainer& container) {
    for (const THostText& text : kHostTexts)
        if (std::string(fact.className) == kHostClass && IsSameName(text.systemProperty, fact.property))
            return HostTextOf(container, text);
    return "";
}

TIdentityFact Missing(const TFact& fact, kyrStatusCode status, const TContainer& container) {
    const std::string known = FindInCollection(fact, container);
    return {fact.label, fact.name, known, known.empty() ? WhyMissing(fact, status, container) : TReason()};
}

TIdentityFact FirstValue(const TFact& fact, const TContainer& container) {
    const std::vector<TCIMInstance*> instances = InstancesFor(fact, container);
    const TCIMProperty* const property = instances.empty() ? nullptr : instances.front()->FindProperty(fact.property);
    if (property == nullptr) return Missing(fact, kyrStatusNotFound, container);
    if (property->GetValue().IsNull()) return Missing(fact, kyrStatusValueIsNULL, container);
    return {fact.label, fact.name, DisplayText(*property), {}};
}

TIdentityFact Ask(const TFact& fact, TContainer& container) {
    if (fact.get == nullptr) return FirstValue(fact, container);
    try {
        return {fact.label, fact.name, fact.get(&container), {}};
    } catch (const TKYRException& e) {
        return Missing(fact, e.fCode, container);
    }
}

// The value stands below its label where there is no room behind it.
void Print(const TIdentityFact& fact, TOutput& output) {
    const bool isStacked = output.Width() < kColumn + kLeastValueWidth;
    const std::string text = fact.reason ? "not available (" + SentenceOf(fact.reason) + ")" : fact.value;
    if (isStacked) output.Write(fact.label + "\n");
    std::string start = isStacked ? "" : fact.label;
    start.resize(isStacked ? 2 : kColumn, ' ');
    output.WriteWrapped(VisibleText(text), start);
}

class TIdentityCommand : public TCommand {
public:
    explicit TIdentityCommand(CLI::App& app) : TCommand(app, "identity", "Print what machine this is") {
        AddFile();
        AddCollecting();
    }

    EExit Run(TOutput& output) override {
        TInventory inventory(fSession);
        inventory.Collect(kClasses);
        std::vector<TIdentityFact> facts;
        for (const TFact& fact : kFacts) facts.push_back(Ask(fact, inventory.Container()));
        if (fJson)
            WriteIdentityJson(facts, inventory.Container(), output);
        else
            for (const TIdentityFact& fact : facts) Print(fact, output);
        const EExit status = inventory.Conclude();
        const bool any =
            std::any_of(facts.begin(), facts.end(), [](const TIdentityFact& fact) { return !fact.reason; });
        return any ? status : eExitNothing;
    }
};

}  // namespace

std::vector<std::string> FactNames() {
    std::vector<std::string> names;
    for (const TFact& fact : kFacts) names.emplace_back(fact.name);
    return names;
}

std::vector<std::string> ClassesOfFacts() { return kClasses; }

TIdentityFact GetFact(const std::string& name, TContainer& container) {
    const auto* const fact =
        std::find_if(std::begin(kFacts), std::end(kFacts), [&](const TFact& each) { return name == each.name; });
    if (fact == std::end(kFacts)) throw std::logic_error("unknown fact " + name);
    return Ask(*fact, container);
}

std::unique_ptr<TCommand> MakeIdentityCommand(CLI::App& app) { return std::make_unique<TIdentityCommand>(app); }
