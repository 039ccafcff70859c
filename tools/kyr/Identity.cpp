#include "Identity.h"

#include "PluginQuery.h"
#include "Session.h"
#include "VisibleText.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TKYRException.h"

namespace {

struct TFact {
    const char* label;
    std::string (*get)(TContainer*);
};

constexpr TFact kFacts[] = {
    {"System name", TCIMSchemaHelper::GetSystemName},
    {"Product", TCIMSchemaHelper::GetSystemProductName},
    {"Machine type and model", TCIMSchemaHelper::GetMTM},
    {"Machine type", TCIMSchemaHelper::GetMachineType},
    {"Model", TCIMSchemaHelper::GetModelNumber},
    {"Serial number", TCIMSchemaHelper::GetSerialNumber},
    {"Operating system", TCIMSchemaHelper::GetOperatingSystemName},
    {"Version", TCIMSchemaHelper::GetOperatingSystemVersion},
    {"Data source version", TCIMSchemaHelper::GetDataSourceVersion},
};

// The classes that those facts are read from.
const std::vector<std::string> kClasses = {"MOLTA_ComputerSystem", "MOLTA_OperatingSystem", "MOLTA_SystemBIOSElement",
                                           "MOLTA_ORQProduct"};

// What the core logged about the last question, if it did, or else what the status means here.
std::string ReasonOf(kyrStatusCode code, const TLog& log) {
    const std::string mark = "TCIMSchemaHelper: ";
    for (const ILogger::TLogEntry& entry : log.Take())
        if (entry.text.compare(0, mark.size(), mark) == 0) return VisibleText(entry.text.substr(mark.size()));
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

// Gives whether the fact is known.
bool PrintFact(const TFact& fact, const TSession& session, TOutput& output) {
    std::string label = fact.label;
    label.resize(24, ' ');
    try {
        output.Write(label + VisibleText(fact.get(&session.Schema())) + "\n");
        return true;
    } catch (const TKYRException& e) {
        output.Write(label + "not available (" + ReasonOf(e.fCode, session.Log()) + ")\n");
        return false;
    }
}

}  // namespace

EExit RunIdentity(const TOptions& options, TOutput& output, TFailures& failures) {
    const TSession session(options.session, failures);
    TPluginQuery(session).RunQuery(&session.Schema(), kClasses);
    bool any = false;
    for (const TFact& fact : kFacts) any |= PrintFact(fact, session, output);
    if (!any) return eExitNothing;
    return failures.IsEmpty() ? eExitComplete : eExitPartial;
}
