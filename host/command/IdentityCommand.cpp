#include <CLI/App.hpp>
#include <algorithm>

#include "base/Text.h"
#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "model/Provenance.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kColumn = 24;
constexpr size_t kLeastValueWidth = 20;

constexpr const char* kSystem = "MOLTA_ComputerSystem";
constexpr const char* kOperatingSystem = "MOLTA_OperatingSystem";
constexpr const char* kProduct = "MOLTA_ORQProduct";

struct TFact {
    const char* label;
    const char* name;
    std::string (*get)(TContainer*);
    const char* className;  // the property that it is read from, in its own form or made into another
    const char* property;
};

constexpr TFact kFacts[] = {
    {"System name", "systemName", TCIMSchemaHelper::GetSystemName, kSystem, "Name"},
    {"Product", "product", TCIMSchemaHelper::GetSystemProductName, kSystem, "ProductName"},
    {"Machine type and model", "machineTypeModel", TCIMSchemaHelper::GetMTM, kSystem, "ProductName"},
    {"Machine type", "machineType", TCIMSchemaHelper::GetMachineType, kSystem, "ProductName"},
    {"Model", "model", TCIMSchemaHelper::GetModelNumber, kSystem, "ProductName"},
    {"Serial number", "serialNumber", TCIMSchemaHelper::GetSerialNumber, kSystem, "SerialNumber"},
    {"Operating system", "operatingSystem", TCIMSchemaHelper::GetOperatingSystemName, kOperatingSystem, "Name"},
    {"Version", "version", TCIMSchemaHelper::GetOperatingSystemVersion, kOperatingSystem, "Version"},
    {"Data source version", "dataSourceVersion", TCIMSchemaHelper::GetDataSourceVersion, kProduct, "Version"},
};

// The classes of those facts, and the one that may name the machine type in place of the product's name.
const std::vector<std::string> kClasses = {kSystem, kOperatingSystem, "MOLTA_SystemBIOSElement", kProduct};

// What a plugin said of a property that it could not read.
TReason FindAbsence(const TFact& fact, const TContainer& container) {
    const TCIMClass* const cls = container.FindClass(fact.className);
    if (cls == nullptr) return {};
    for (const TCIMInstance* instance : cls->EnumerateInstances(true))
        for (const TReason& absence : AbsencesOf(*instance))
            if (IsSameName(absence.property, fact.property)) return absence;
    return {};
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

TIdentityFact Ask(const TFact& fact, TContainer& container) {
    try {
        return {fact.label, fact.name, fact.get(&container), {}};
    } catch (const TKYRException& e) {
        return {fact.label, fact.name, "", WhyMissing(fact, e.fCode, container)};
    }
}

// The value stands below its label where there is no room behind it.
void Print(const TIdentityFact& fact, TOutput& output) {
    const bool isStacked = output.Width() < kColumn + kLeastValueWidth;
    const size_t column = isStacked ? 2 : kColumn;
    const std::string text = fact.reason ? "not available (" + SentenceOf(fact.reason) + ")" : fact.value;
    std::string start = isStacked ? fact.label + "\n  " : fact.label;
    if (!isStacked) start.resize(kColumn, ' ');
    for (const std::string& line : WrapText(VisibleText(text), std::max<size_t>(output.Width(), column + 1) - column)) {
        output.Write(start + line + "\n");
        start.assign(column, ' ');
    }
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

std::unique_ptr<TCommand> MakeIdentityCommand(CLI::App& app) { return std::make_unique<TIdentityCommand>(app); }
