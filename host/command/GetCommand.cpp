#include <CLI/App.hpp>
#include <algorithm>
#include <map>

#include "base/NearMatches.h"
#include "base/Text.h"
#include "command/Command.h"
#include "command/IdentityFacts.h"
#include "inventory/Inventory.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/InstanceChoice.h"
#include "model/Provenance.h"
#include "model/ReadingOrder.h"
#include "model/Values.h"

namespace {

constexpr const char* kExamples =
    "EXPR is NAME.PROPERTY, NAME[PROPERTY=VALUE].PROPERTY, or the name of a fact that kyr identity --json has.\n"
    "NAME is a class or an instance, as for kyr show.\n\n"
    "Examples:\n"
    "  kyr get os.Version\n"
    "  kyr get sda.Size --raw\n"
    "  kyr get 'DiskDrive[SerialNumber=ZAD0EXM1].Size' machine.xml.gz\n"
    "  kyr get serialNumber\n\n";

/// NAME[KEY=VALUE].PROPERTY
struct TExpression {
    std::string name;
    std::string key;  // empty: there is no condition
    std::string value;
    std::string property;
};

[[noreturn]] void RefuseExpression(const std::string& text) {
    const std::string near = DidYouMean(text, FactNames());
    throw TCommandError(eExitUsage, "'" + text + "' is no NAME.PROPERTY, no NAME[PROPERTY=VALUE].PROPERTY and no fact" +
                                        (near.empty() ? "; facts are " + Join(FactNames()) : near));
}

std::string WithoutQuotes(const std::string& text) {
    const bool isQuoted = text.size() >= 2 && text.front() == text.back() && (text[0] == '"' || text[0] == '\'');
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

TExpression WithCondition(const std::string& text, size_t open) {
    const size_t equals = text.find('=', open), close = text.rfind("].");
    if (equals == std::string::npos || close == std::string::npos || close < equals) RefuseExpression(text);
    return {text.substr(0, open), text.substr(open + 1, equals - open - 1),
            WithoutQuotes(text.substr(equals + 1, close - equals - 1)), text.substr(close + 2)};
}

// Names may have dots in them, and values may be anything; names of properties have neither dots nor brackets.
TExpression Parse(const std::string& text) {
    const size_t open = text.find('['), dot = text.rfind('.');
    if (dot == std::string::npos) RefuseExpression(text);
    const TExpression expression = open == std::string::npos
                                       ? TExpression{text.substr(0, dot), "", "", text.substr(dot + 1)}
                                       : WithCondition(text, open);
    if (expression.name.empty() || expression.property.empty()) RefuseExpression(text);
    return expression;
}

bool Meets(const TExpression& expression, const TCIMInstance& instance) {
    if (expression.key.empty()) return true;
    const TCIMProperty* const property = instance.FindProperty(expression.key);
    if (property == nullptr || property->GetValue().IsNull()) return false;
    const std::string forms[] = {PlainText(property->GetValue()), ValueText(*property, true),
                                 ValueText(*property, false)};
    return std::find(std::begin(forms), std::end(forms), expression.value) != std::end(forms);
}

/// The chosen values, printed one by one.
class TValues {
public:
    TValues(const TExpression& expression, bool raw, TOutput& output)
        : fExpression(expression), fRaw(raw), fOutput(output) {}

    void Print(const TCIMInstance& instance) {
        const TCIMProperty* const property = instance.FindProperty(fExpression.property);
        if (property == nullptr || !Meets(fExpression, instance)) return;
        if (property->GetValue().IsNull()) return AddAbsence(instance);
        fOutput.Write(ValueText(*property, fRaw) + "\n");
        fAny = true;
    }

    /// Tells what was missing, and why. Returns the exit status that follows.
    EExit Conclude() const {
        for (const auto& [word, absences] : fAbsences) {
            const std::string many = std::to_string(absences.size()) + " instances: " + word;
            PrintDiagnostic("no " + fExpression.property + " of " + (absences.size() == 1 ? absences.front() : many));
        }
        if (!fAny && fAbsences.empty()) PrintDiagnostic("there is no such instance");
        return !fAny ? eExitNothing : fAbsences.empty() ? eExitComplete : eExitPartial;
    }

private:
    void AddAbsence(const TCIMInstance& instance) {
        const std::string reason = ReasonOf(instance);
        fAbsences[reason.substr(0, reason.find(": "))].push_back(DisplayName(instance) + ": " + reason);
    }

    std::string ReasonOf(const TCIMInstance& instance) const {
        const std::string own = TProvenance(instance).AbsenceOf(fExpression.property);
        if (!own.empty()) return own;
        const TCIMPropertyDecl* const declaration = FindPropertyNamed(*instance.GetClass(), fExpression.property);
        const std::string meaning = declaration == nullptr ? "" : NullMeaningOf(*declaration);
        return meaning.empty() ? "no reason is given" : meaning;
    }

    const TExpression& fExpression;
    const bool fRaw;
    TOutput& fOutput;
    bool fAny = false;
    std::map<std::string, std::vector<std::string>>
        fAbsences;  // of instances without a value, by the word for the reason
};

void CheckProperties(const TExpression& expression, const TInstanceChoice& choice) {
    if (choice.Classes().empty()) return;
    GetPropertyNamed(choice.Classes(), expression.property);
    if (!expression.key.empty()) GetPropertyNamed(choice.Classes(), expression.key);
}

class TGetCommand : public TCommand {
public:
    explicit TGetCommand(CLI::App& app) : TCommand(app, "get", "Print single values") {
        SetExamples(kExamples);
        AddFileAndName("EXPR", fExpression, "What to print");
        fApp.add_flag("--raw", fRaw, "Plain values in place of display text");
        AddCollecting();
        fApp.remove_option(fApp.get_option("--json"));
    }

    EExit Run(TOutput& output) override {
        for (const std::string& name : FactNames())
            if (IsSameName(name, fExpression)) return PrintFact(name, output);
        return PrintValues(Parse(fExpression), output);
    }

private:
    EExit PrintFact(const std::string& name, TOutput& output) const {
        TInventory inventory(fSession);
        inventory.Collect(ClassesOfFacts());
        const TIdentityFact fact = GetFact(name, inventory.Container());
        const EExit status = inventory.Conclude();
        if (!fact.reason) output.Write(VisibleText(fact.value) + "\n");
        if (!fact.reason) return status;
        PrintDiagnostic("no " + name + ": " + SentenceOf(fact.reason));
        return eExitNothing;
    }

    EExit PrintValues(const TExpression& expression, TOutput& output) const {
        TInventory inventory(fSession);
        TInstanceChoice choice = inventory.LookUp([&](const TContainer& schema) {
            TInstanceChoice chosen(schema, {}, {expression.name});
            CheckProperties(expression, chosen);
            return chosen;
        });
        inventory.Collect(choice.ClassesToCollect(), choice.ClassesNamed());
        inventory.LookUp([&](const TContainer& container) {
            choice.FindInstances(container);
            CheckProperties(expression, choice);
        });
        TValues values(expression, fRaw, output);
        std::vector<TCIMClass*> classes = choice.Classes();
        SortForReading(classes);
        for (const TCIMClass* cls : classes)
            for (const TCIMInstance* instance : InNaturalOrder(choice.InstancesOf(*cls))) values.Print(*instance);
        const EExit collected = inventory.Conclude();
        return std::max(collected, values.Conclude());
    }

    std::string fExpression;
    bool fRaw = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeGetCommand(CLI::App& app) { return std::make_unique<TGetCommand>(app); }
