#include "check/RunRules.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <set>
#include <unordered_map>

#include "base/NearMatches.h"
#include "base/Text.h"
#include "check/ElfFile.h"
#include "check/Schema.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "model/DateFaults.h"
#include "model/Provenance.h"
#include "model/Qualifiers.h"
#include "model/Values.h"
#include "states/InterfaceVersion.h"
#include "states/StateInstances.h"

namespace {

using TType = TCIMValue::TCIMType;

constexpr size_t kLongestShown = 80;

// Of so many, the first of which is told.
std::string MoreText(size_t count) { return count == 1 ? "" : " and " + std::to_string(count - 1) + " more"; }

std::vector<std::string> PropertyNames(const TCIMClass& cls) {
    std::vector<std::string> names;
    for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) names.push_back(declaration->GetName());
    return names;
}

// The strings of a string property, or of the elements of an array of them.
std::vector<std::string> StringsOf(const TCIMValue& value) {
    std::vector<std::string> strings;
    if (value.IsNull()) return strings;
    if (value.GetType() == TType::eCIMString) return {static_cast<std::string>(value)};
    if (value.GetType() != kStringArray) return strings;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value))
        if (!element.IsNull()) strings.push_back(static_cast<std::string>(element));
    return strings;
}

/// Instances that violate a rule alike make one finding, which tells how many they are.
class TGroups {
public:
    TGroups(const TReported& reported, TFindings& findings) : fReported(reported), fFindings(findings) {}
    TGroups(const TGroups&) = delete;
    TGroups& operator=(const TGroups&) = delete;
    ~TGroups() = default;

    void Add(const char* rule, const TCIMInstance& instance, const std::string& property, const std::string& what,
             const std::string& remedy) {
        TGroup& group = fGroups[{rule, instance.GetClass()->GetName(), property, what}];
        if (group.count++ == 0) group.first = VisiblePath(instance), group.remedy = remedy;
    }

    void AddFindings() const {
        for (const auto& [key, group] : fGroups) {
            const auto& [rule, cls, property, what] = key;
            fFindings.Add(rule.c_str(), {fReported.file, 0, cls, property},
                          cls + (property.empty() ? "" : "." + property) + ": " + what + " (" +
                              CutText(group.first, kLongestShown) + MoreText(group.count) + ")",
                          group.remedy);
        }
    }

private:
    struct TGroup {
        size_t count = 0;
        std::string first;
        std::string remedy;
    };

    const TReported& fReported;
    TFindings& fFindings;
    std::map<std::array<std::string, 4>, TGroup> fGroups;
};

long double NumberOf(const std::string& text) { return text == "true" ? 1 : std::strtold(text.c_str(), nullptr); }

// Of an entry "N", "N..", "N..M", "..M" or "..".
bool IsIn(const std::string& entry, const std::string& number) {
    const size_t dots = entry.find("..");
    const long double value = NumberOf(number);
    if (dots == std::string::npos) return NumberOf(entry) == value;
    const std::string low = Trimmed(entry.substr(0, dots)), high = Trimmed(entry.substr(dots + 2));
    return (low.empty() || NumberOf(low) <= value) && (high.empty() || value <= NumberOf(high));
}

/// The words of ValueMap, if the property may hold nothing else.
class TValueWords {
public:
    explicit TValueWords(const TCIMPropertyDecl& declaration)
        : fIsNumber(declaration.GetType() != TType::eCIMString && declaration.GetType() != kStringArray),
          fEntries(QualifierTexts(declaration, "ValueMap")) {
        if (fIsNumber && QualifierTexts(declaration, "Values").empty()) fEntries.clear();
    }

    // The first element that has no word; empty if there is none. A number without a word is shown as it is.
    std::string FindOther(const TCIMProperty& property) const {
        if (fEntries.empty()) return "";
        const TCIMValue value = property.GetValue();
        if (!fIsNumber) {
            for (const std::string& text : StringsOf(value))
                if (std::find(fEntries.begin(), fEntries.end(), text) == fEntries.end()) return text;
            return "";
        }
        const std::vector<std::string> words =
            value.IsArray() ? DisplayElements(property) : TTexts{DisplayText(property)};
        const std::vector<std::string> numbers = value.IsArray() ? RawElements(value) : TTexts{RawText(value)};
        for (size_t i = 0; i < words.size() && i < numbers.size(); ++i)
            if (words[i] == numbers[i] && !IsDeclared(numbers[i])) return numbers[i];
        return "";
    }

private:
    using TTexts = std::vector<std::string>;

    // A number that is declared may be shown without its word, too, because of what V01, V04 and V05 tell.
    bool IsDeclared(const std::string& number) const {
        return std::any_of(fEntries.begin(), fEntries.end(),
                           [&number](const std::string& entry) { return IsIn(entry, number); });
    }

    bool fIsNumber;
    std::vector<std::string> fEntries;
};

/// The classes of which all instances are known, so that a reference to another one is one to nothing.
class TCollected {
public:
    explicit TCollected(const TContainer& container) {
        for (const TCIMInstance* state : StatesOf(container, kCollectedClassClass))
            if (OutcomeOf(*state).state == eComplete) fNames.insert(TextOf(*state, "Name"));
    }
    bool Has(const std::string& className) const { return fNames.count(className) != 0; }

private:
    std::set<std::string> fNames;
};

class TInstanceCheck {
public:
    TInstanceCheck(const TReported& reported, TFindings& findings)
        : fFindings(findings),
          fFile(reported.file),
          fGroups(reported, findings),
          fCollected(reported.container),
          fIsSaved(reported.isSaved) {
        for (const TCIMClass* cls : reported.classes) CheckClass(*cls);
        fGroups.AddFindings();
    }

private:
    void CheckClass(const TCIMClass& cls) {
        CheckDates(cls);
        std::unordered_map<const TCIMPropertyDecl*, TValueWords> words;
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
            words.emplace(declaration, *declaration);
        std::string before;
        for (const TCIMInstance* instance : cls.EnumerateInstances(false)) {
            const std::string path = instance->BuildPath().GetPath();
            if (path == before)
                fGroups.Add("R06", *instance, "", "two instances have the same keys",
                            "make the keys tell them apart, or report it once");
            before = path;
            CheckInstance(*instance, words);
        }
    }

    void CheckDates(const TCIMClass& cls) {
        for (const TDateFault& fault : FindDateFaults(cls))
            fFindings.Add("R18", {fFile, 0, cls.GetName(), fault.property},
                          cls.GetName() + "." + fault.property + ": " + fault.text + " (" +
                              CutText(fault.path, kLongestShown) + MoreText(fault.count) + ")",
                          "give a date such as 20240131120000.000000+060, or leave it out and say why in "
                          "UnavailableValues");
    }

    void CheckInstance(const TCIMInstance& instance,
                       const std::unordered_map<const TCIMPropertyDecl*, TValueWords>& words) {
        const TProvenance provenance(instance);
        for (const char* companion : {"UnavailableValues", "ValueSources"}) CheckCompanion(instance, companion);
        for (const TCIMProperty* property : instance.EnumerateProperties()) {
            const TCIMPropertyDecl& declaration = property->GetDeclaration();
            const TCIMValue value = property->GetValue();
            if (value.IsNull()) {
                CheckNull(instance, declaration, provenance);
                continue;
            }
            if (value.IsReference()) CheckReference(instance, declaration, value);
            if (const auto found = words.find(&declaration); found != words.end())
                CheckWord(instance, *property, found->second);
            if (!IsCompanion(declaration)) CheckTexts(instance, declaration, value);
        }
    }

    void CheckNull(const TCIMInstance& instance, const TCIMPropertyDecl& declaration, const TProvenance& provenance) {
        const std::string& name = declaration.GetName();
        if (name.empty()) return;                         // S27 tells it
        if (fIsSaved && IsVolatile(declaration)) return;  // a file that was saved with --stable lacks its value
        if (IsCompanion(declaration) || !provenance.AbsenceOf(name).empty() || !NullMeaningOf(declaration).empty())
            return;
        fGroups.Add("R04", instance, name, "it is NULL, and nothing says why",
                    "add '" + name + ": not present: SOURCE' to UnavailableValues, or give the property NullMeans");
    }

    void CheckCompanion(const TCIMInstance& instance, const char* companion) {
        const TCIMProperty* const property = instance.FindProperty(companion);
        if (property == nullptr) return;
        for (const std::string& entry : StringsOf(property->GetValue())) CheckEntry(instance, companion, entry);
    }

    void CheckEntry(const TCIMInstance& instance, const std::string& companion, const std::string& entry) {
        const size_t colon = entry.find(": ");
        if (colon == std::string::npos)
            return fGroups.Add("R05", instance, companion, Quoted(entry) + " is not of the form 'property: text'",
                               "write it so");
        const std::string name = entry.substr(0, colon), note = entry.substr(colon + 2);
        const TCIMClass& cls = *instance.GetClass();
        if (FindPropertyNamed(cls, name) == nullptr)
            return fGroups.Add("R05", instance, companion, "the class has no property " + Quoted(name),
                               "name one of its properties" + DidYouMean(name, PropertyNames(cls)));
        if (companion == "UnavailableValues" && CodeOfAbsence(note) == EReason::eNone)
            fGroups.Add("R05", instance, companion, Quoted(note) + " is no reason that is known",
                        "write not present, no permission, not supported, read error, does not apply or not reported");
    }

    void CheckReference(const TCIMInstance& instance, const TCIMPropertyDecl& declaration, const TCIMValue& value) {
        const TCIMReference reference = value;
        const TCIMClass* const cls = value.GetReferencedClass();
        if (cls == nullptr || !fCollected.Has(cls->GetName()) || cls->FindInstance(reference) != nullptr) return;
        fGroups.Add("R07", instance, declaration.GetName(),
                    "there is no " + Quoted(reference.GetPath()) + ", to which it refers",
                    "give all keys, spelled as the class declares them, with the values of an instance");
    }

    void CheckWord(const TCIMInstance& instance, const TCIMProperty& property, const TValueWords& words) {
        const std::string other = words.FindOther(property);
        if (!other.empty())
            fGroups.Add("R08", instance, property.GetName(), Quoted(other) + " is not in ValueMap",
                        "add it to ValueMap and Values, or report what is meant");
    }

    void CheckTexts(const TCIMInstance& instance, const TCIMPropertyDecl& declaration, const TCIMValue& value) {
        for (const std::string& text : StringsOf(value)) {
            const bool isPadded = !text.empty() && (text.front() == ' ' || text.back() == ' ');
            const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t'; };
            const bool isControlled = std::any_of(text.begin(), text.end(), isControl);
            if (isPadded)
                fGroups.Add("R09", instance, declaration.GetName(), "blanks stand around the text", "remove them");
            if (ValidText(text) != text)
                fGroups.Add("R09", instance, declaration.GetName(), "a byte of the text is not UTF-8",
                            "convert it from the encoding of its source");
            if (isControlled)
                fGroups.Add("R09", instance, declaration.GetName(), "the text has control characters", "remove them");
        }
    }

    TFindings& fFindings;
    const std::string fFile;
    TGroups fGroups;
    const TCollected fCollected;
    const bool fIsSaved;
};

const TCIMInstance* FindState(const TCIMClass& cls, const TContainer& container) {
    for (const TCIMInstance* state : StatesOf(container, kCollectedClassClass))
        if (TextOf(*state, "Name") == cls.GetName()) return state;
    return nullptr;
}

TStoredOutcome StateOf(const TCIMClass& cls, const TContainer& container) {
    const TCIMInstance* const state = FindState(cls, container);
    return state == nullptr ? TStoredOutcome() : OutcomeOf(*state);
}

// Whether it is the plugin that made it incomplete. A source that is missing or may not be read is the machine's
// affair, and the plugin is right to tell it.
bool IsOfPlugin(EReason code) {
    constexpr EReason kFaults[] = {
        EReason::eNoAnswer,       EReason::eDeadlinePassed,   EReason::eCrashed,         EReason::eExited,
        EReason::eDataCallFailed, EReason::eErrorLogged,      EReason::eNoSuchProperty,  EReason::eWrongType,
        EReason::eBadValue,       EReason::eNoSuchClass,      EReason::eForeignClass,    EReason::eNoSuchKey,
        EReason::eCallRefused,    EReason::eTooMuchDelivered, EReason::eDeliveryDamaged, EReason::eTooManyRefused};
    return std::find(std::begin(kFaults), std::end(kFaults), code) != std::end(kFaults);
}

bool IsFailure(const TStoredOutcome& outcome) {
    if (outcome.state == ePartial) return IsOfPlugin(outcome.code);
    return outcome.state == eFailed || outcome.state == eTimedOut || outcome.state == eRefused;
}

constexpr const char* kBuildAnew = "build it with the headers of this kyr, or use a newer kyr";

std::string RemedyFor(const TStoredOutcome& outcome) {
    if (outcome.code == EReason::eInterfaceTooNew) return kBuildAnew;
    if (outcome.code == EReason::eClassesTaken) return "register one plugin in a library";
    if (outcome.code == EReason::eNoPluginRegistered)
        return "call kyrRegisterPlugin in a function with the attribute constructor";
    const bool isSilent = outcome.code == EReason::eDataCallFailed && EndsWith(outcome.text, " logged nothing");
    return isSilent ? "say why with kyrWriteLog" : "mend what it names";
}

/// Classes that failed for one reason make one finding.
class TFailures {
public:
    void Add(const std::string& name, const TStoredOutcome& outcome) {
        TFailure& failure = fFailures[{outcome.state == ePartial, outcome.text}];
        failure.names.push_back(name);
        failure.remedy = RemedyFor(outcome);
    }

    bool IsEmpty() const { return fFailures.empty(); }

    void AddFindings(const std::string& file, TFindings& findings) const {
        for (const auto& [key, failure] : fFailures) {
            const auto& [isPartial, text] = key;
            const bool isOne = failure.names.size() == 1;
            const char* const what = !isPartial ? " could not be collected: "
                                     : isOne    ? " is not complete: "
                                                : " are not complete: ";
            findings.Add("R01", {file, 0, isOne ? failure.names.front() : ""}, Join(failure.names) + what + text,
                         failure.remedy);
        }
    }

private:
    struct TFailure {
        std::vector<std::string> names;
        std::string remedy;
    };

    std::map<std::pair<bool, std::string>, TFailure> fFailures;  // by whether it is partial, and the reason
};

// Of its document there are findings anyway, and of classes that another plugin has.
bool IsToldOfDocument(EReason code) {
    return code == EReason::eDocumentMistake || code == EReason::eDocumentUnreadable ||
           code == EReason::eDocumentHarmful || code == EReason::eDocumentTooLarge || code == EReason::eClassNameTaken;
}

// What no class tells: a plugin that failed before it was asked for any, or that logged errors of its own.
void AddPlugins(const TReported& reported, TFailures& failures) {
    for (const TCIMInstance* plugin : reported.plugins) {
        const TStoredOutcome outcome = OutcomeOf(*plugin);
        if (IsFailure(outcome) && outcome.HasReason() && !IsToldOfDocument(outcome.code))
            failures.Add("the plugin " + TextOf(*plugin, "Name"), outcome);
    }
}

// A newer major number is a failure. A library that was not loaded has no version at all.
void CheckInterfaces(const TReported& reported, TFindings& findings) {
    for (const TCIMInstance* plugin : reported.plugins) {
        const std::string doubt = DoubtAbout(TextOf(*plugin, "InterfaceVersion"));
        if (!doubt.empty() && !TextOf(*plugin, "Version").empty())
            findings.Add("R17", {reported.file}, "the plugin " + TextOf(*plugin, "Name") + ": " + doubt, kBuildAnew);
    }
}

// An association has none where one of its ends has none.
bool IsSilentlyEmpty(const TCIMClass& cls, const TStoredOutcome& outcome, const TContainer& container) {
    if (outcome.state != eComplete || cls.IsAssociation() || !cls.EnumerateInstances(false).empty()) return false;
    const TCIMInstance* const state = FindState(cls, container);
    return state != nullptr && TextsOf(*state, "LogLines").empty() && TextsOf(*state, "MissingSources").empty();
}

using TInstances = std::map<std::string, const TCIMInstance*>;

TInstances InstancesByPath(const TCIMClass& cls) {
    TInstances instances;
    for (const TCIMInstance* instance : cls.EnumerateInstances(false))
        instances.emplace(instance->BuildPath().GetPath(), instance);
    return instances;
}

void CompareInstances(const TCIMInstance& first, const TCIMInstance& second, TGroups& groups) {
    for (const TCIMProperty* property : first.EnumerateProperties()) {
        const TCIMPropertyDecl& declaration = property->GetDeclaration();
        const TCIMProperty* const other = second.FindProperty(property->GetName());
        if (other == nullptr || IsVolatile(declaration) || IsCompanion(declaration) ||
            RawText(property->GetValue()) == RawText(other->GetValue()))
            continue;
        groups.Add("R10", first, property->GetName(), "a second run gave another value, and it is not Volatile",
                   "add the qualifier Volatile, or report what stays the same");
    }
}

}  // namespace

void CheckInstances(const TReported& reported, TFindings& findings) { const TInstanceCheck check(reported, findings); }

void CheckOutcomes(const TReported& reported, TFindings& findings) {
    std::vector<std::string> empty;
    TFailures failures;
    for (const TCIMClass* cls : reported.classes) {
        const TStoredOutcome outcome = StateOf(*cls, reported.container);
        if (outcome.code == EReason::eNotGranted)
            findings.Add("R15", {reported.file, 0, cls->GetName()}, cls->GetName() + ": " + outcome.text,
                         "look at what kyr collect reports with --grant");
        else if (IsFailure(outcome))
            failures.Add(cls->GetName(), outcome);
        else if (IsSilentlyEmpty(*cls, outcome, reported.container) && !HoldsWord(reported.file, cls->GetName()))
            empty.push_back(cls->GetName());
    }
    if (failures.IsEmpty()) AddPlugins(reported, failures);
    failures.AddFindings(reported.file, findings);
    CheckInterfaces(reported, findings);
    if (!empty.empty())
        findings.Add("R03", {reported.file, 0, empty.size() == 1 ? empty.front() : ""},
                     "no instance of " + Join(empty) + ", no log line says why, and the library does not name it",
                     "report what this machine has; if a source cannot be read, report a MOLTA_MissingSource");
}

void CompareRuns(const TReported& reported, const TContainer& second, TFindings& findings) {
    TGroups groups(reported, findings);
    for (const TCIMClass* cls : reported.classes) {
        const TCIMClass* const other = FindClassNamed(second, cls->GetName());
        if (other == nullptr) continue;
        const TInstances there = InstancesByPath(*other);
        for (const auto& [path, instance] : InstancesByPath(*cls)) {
            const auto same = there.find(path);
            if (same == there.end())
                groups.Add("R10", *instance, "", "a second run does not report the instance",
                           "choose keys that stay the same");
            else
                CompareInstances(*instance, *same->second, groups);
        }
    }
    groups.AddFindings();
}

void CompareWithPart(const TReported& reported, const TContainer& second, const TContainer& part, TFindings& findings) {
    TGroups groups(reported, findings);
    for (const TCIMClass* cls : reported.classes) {
        const TCIMClass *const inSecond = FindClassNamed(second, cls->GetName()), *const inPart = FindClassNamed(
                                                                                      part, cls->GetName());
        if (inSecond == nullptr || inPart == nullptr || StateOf(*inPart, part).state == eNotAsked) continue;
        const TInstances expected = InstancesByPath(*inSecond), found = InstancesByPath(*inPart);
        for (const auto& [path, instance] : InstancesByPath(*cls))
            if (expected.count(path) != 0 && found.count(path) == 0)
                groups.Add("R11", *instance, "", "a run that was asked for fewer classes does not report the instance",
                           "report a class that is asked for, whatever else is");
    }
    groups.AddFindings();
}
