#include "command/Identity.h"

#include <algorithm>

#include "inventory/Inventory.h"
#include "inventory/Log.h"
#include "json/Json.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TKYRException.h"
#include "text/VisibleText.h"
#include "text/WrapText.h"

namespace {

constexpr size_t kColumn = 24;
constexpr size_t kLeastValueWidth = 20;

struct TFact {
    const char* label;
    const char* name;
    std::string (*get)(TContainer*);
};

constexpr TFact kFacts[] = {
    {"System name", "systemName", TCIMSchemaHelper::GetSystemName},
    {"Product", "product", TCIMSchemaHelper::GetSystemProductName},
    {"Machine type and model", "machineTypeModel", TCIMSchemaHelper::GetMTM},
    {"Machine type", "machineType", TCIMSchemaHelper::GetMachineType},
    {"Model", "model", TCIMSchemaHelper::GetModelNumber},
    {"Serial number", "serialNumber", TCIMSchemaHelper::GetSerialNumber},
    {"Operating system", "operatingSystem", TCIMSchemaHelper::GetOperatingSystemName},
    {"Version", "version", TCIMSchemaHelper::GetOperatingSystemVersion},
    {"Data source version", "dataSourceVersion", TCIMSchemaHelper::GetDataSourceVersion},
};

// The classes that those facts are read from.
const std::vector<std::string> kClasses = {"MOLTA_ComputerSystem", "MOLTA_OperatingSystem", "MOLTA_SystemBIOSElement",
                                           "MOLTA_ORQProduct"};

// What the core logged about the last question, if it did, or else what the status means here.
std::string ReasonOf(kyrStatusCode code) {
    const std::string mark = "TCIMSchemaHelper: ";
    for (const TLogLine& line : TLog::Take())
        if (line.text.compare(0, mark.size(), mark) == 0) return line.text.substr(mark.size());
    switch (code) {
        case kyrStatusNotFound:
            return "nothing was collected that tells it";
        case kyrStatusValueIsNULL:
            return "this machine does not tell it";
        case kyrStatusInvalidFormat:
            return "what this machine tells is not in the expected form";
        default:
            return kyrTranslateStatusCode(code);
    }
}

TIdentityFact Ask(const TFact& fact, TContainer& container) {
    try {
        return {fact.label, fact.name, fact.get(&container), ""};
    } catch (const TKYRException& e) {
        return {fact.label, fact.name, "", ReasonOf(e.fCode)};
    }
}

// Below its label where there is no room behind it.
void Print(const TIdentityFact& fact, TOutput& output) {
    const bool isStacked = output.Width() < kColumn + kLeastValueWidth;
    const size_t column = isStacked ? 2 : kColumn;
    const std::string text = fact.reason.empty() ? fact.value : "not available (" + fact.reason + ")";
    std::string start = isStacked ? fact.label + "\n  " : fact.label;
    if (!isStacked) start.resize(kColumn, ' ');
    for (const std::string& line : WrapText(VisibleText(text), std::max<size_t>(output.Width(), column + 1) - column)) {
        output.Write(start + line + "\n");
        start.assign(column, ' ');
    }
}

}  // namespace

EExit RunIdentity(const TOptions& options, TOutput& output) {
    TInventory inventory(options.session);
    inventory.Collect(kClasses);
    std::vector<TIdentityFact> facts;
    for (const TFact& fact : kFacts) facts.push_back(Ask(fact, inventory.Container()));
    if (options.json)
        WriteIdentityJson(facts, output);
    else
        for (const TIdentityFact& fact : facts) Print(fact, output);
    const EExit status = inventory.Conclude();
    const bool any = std::any_of(facts.begin(), facts.end(), [](const auto& fact) { return fact.reason.empty(); });
    return any ? status : eExitNothing;
}
