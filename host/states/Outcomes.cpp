#include "states/Outcomes.h"

#include <algorithm>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/kyrPlugin.h"
#include "model/Provenance.h"
#include "model/Qualifiers.h"

namespace {

constexpr size_t kMostValuesNamed = 3;
// The core logs this in front of dlopen's message. It would only repeat what the reason says.
constexpr const char* kCoreLoadFailure = "ERROR: Failed to load plugin.  Reason: ";

using TTexts = std::vector<std::string>;
using TErrors = std::vector<const TMessage*>;

// " (and 2 more)", or nothing.
std::string MoreText(size_t count) { return count < 2 ? "" : " (and " + std::to_string(count - 1) + " more)"; }

std::string WithoutStart(const std::string& text, const std::string& start) {
    return StartsWith(text, start) ? text.substr(start.size()) : text;
}

// The errors about the class; with null those about none of the library's classes.
TErrors ErrorsOf(const TPluginLibrary& library, const TCIMClass* cls) {
    TErrors errors;
    for (const TMessage* message : MessagesOf(library, cls))
        if (message->severity == kyrLogError) errors.push_back(message);
    return errors;
}

// The first one, without the name of the class in front.
TReason ErrorsLogged(const TErrors& errors, const TCIMClass* cls) {
    TReason reason = errors.front()->reason;
    if (!reason) {
        const std::string& text = errors.front()->text;
        reason = ReasonFor(EReason::eErrorLogged, cls == nullptr ? text : WithoutStart(text, cls->GetName() + ": "));
        if (cls != nullptr) reason.className = cls->GetName();
    }
    reason.detail += MoreText(errors.size());
    return reason;
}

TReason NothingRegistered(const TPluginReport& report) {
    const std::string error = report.FirstError();
    if (error.empty()) return ReasonFor(EReason::eNoPluginRegistered);
    return ReasonFor(EReason::eCannotOpen, WithoutStart(error, kCoreLoadFailure));
}

TReason DocumentUnreadable(const TPluginLibrary& library) {
    if (library.documentMistake) return library.documentMistake;
    const std::string error = library.report.FirstError(), failure = library.report.loadFailure;
    TReason reason = ReasonFor(EReason::eDocumentUnreadable, error.empty() ? failure : failure + ": " + error);
    reason.file = library.FullDocumentPath();
    if (!library.strayDocument.empty())
        reason.detail += "; rename " + library.strayDocument + ", which lies in its place";
    return reason;
}

bool AreAllInitialised(const TPluginReport& report) {
    return std::all_of(report.plugins.begin(), report.plugins.end(),
                       [](const TPluginInfo& plugin) { return plugin.initialised; });
}

// The first of the wanted classes that another library has, and the number of the others.
TReason ClassesTaken(const TPluginLibrary& library, const TClassSelection& wanted) {
    TReason reason;
    size_t count = 0;
    for (const TReason& taken : library.takenClasses)
        if (wanted.Includes(taken.className) && ++count == 1) reason = taken;
    reason.className += MoreText(count);
    return reason;
}

// The outcome of loading the library and running its plugins, without regard to what its classes delivered.
TOutcome FindLibraryOutcome(const TPluginLibrary& library) {
    const TPluginReport& report = library.report;
    if (report.end.state != eComplete) return report.end;
    if (library.IsLeftOut()) return {};  // it was not loaded, and its classes tell why
    if (report.plugins.empty()) return {eRefused, NothingRegistered(report)};
    if (!report.loadFailure.empty()) return {eRefused, DocumentUnreadable(library)};
    const TPluginInfo* const owner = report.FindOwner();
    if (owner == nullptr && !AreAllInitialised(report))
        return {eRefused, ReasonFor(EReason::eInitFailed, report.FirstError())};
    if (owner == nullptr || (report.IsLoaded() && library.classes.empty() && owner->type == kyrPluginDocumentOnly))
        return {eNotAsked, ReasonFor(EReason::eNoData)};
    if (!report.IsLoaded())
        return {eRefused, ReasonFor(EReason::eInterfaceTooNew, CutText(owner->interfaceVersion, 20))};
    if (!library.classes.empty()) return {};
    if (library.documentMistake) return {eRefused, library.documentMistake};
    const TReason taken = ClassesTaken(library, TClassSelection::All());
    return {eRefused, taken ? taken : ReasonFor(EReason::eNoClassOfItsOwn)};
}

TReason NotGranted(const TPluginLibrary& library, const std::string& need) {
    TReason reason = ReasonFor(EReason::eNotGranted, need);
    reason.plugin = library.Name();
    return reason;
}

TReason LeftOut(const TPluginLibrary& library, const TCIMClass& cls) {
    if (const std::string need = library.FindUngranted(cls); !need.empty()) return NotGranted(library, need);
    TReason reason = ReasonFor(EReason::eNotNamed);
    reason.className = cls.GetName();
    return reason;
}

// Of a class that no data call asked for.
TOutcome FindNotAskedOutcome(const TPluginLibrary& library, const TCIMClass& cls, const TClassSelection& wanted,
                             bool hasInstances) {
    if (IsDontCollect(cls)) return {eNotAsked, ReasonFor(EReason::eMarkedDontCollect)};
    if (library.IsLeftOut(cls)) return {eNotAsked, LeftOut(library, cls)};
    const TOutcome loading = FindLibraryOutcome(library);
    if (loading.state != eComplete) return {hasInstances ? ePartial : loading.state, loading.reason};
    if (hasInstances) return {};
    return {eNotAsked, ReasonFor(wanted.IsSchemaOnly() ? EReason::eSchemaOnly : EReason::eNoData)};
}

bool EndedByRefusedCall(const TDataCall& call) {
    return call.lastRefused.reason && call.lastRefused.call->status == call.failure.status;
}

// A plugin usually returns the status of a call that was refused. Otherwise errors about no class are added, which
// usually explain why it failed.
TReason DataCallFailed(const TPluginLibrary& library, const TDataCall& call) {
    if (EndedByRefusedCall(call)) return call.lastRefused.reason;
    const TErrors errors = ErrorsOf(library, nullptr);
    if (errors.empty()) {
        const bool isSilent = call.failure.status != kyrStatusOK && library.report.messages.empty();
        return ReasonFor(EReason::eDataCallFailed, call.failure.text + (isSilent ? " and logged nothing" : ""));
    }
    const std::string text = errors.front()->text + MoreText(errors.size());
    return ReasonFor(EReason::eDataCallFailed, call.failure.text + ": " + text);
}

TOutcome FindFailedCallOutcome(const TPluginLibrary& library, const TDataCall& call, bool hasInstances) {
    const EState none = call.failure.status == kyrStatusAccessDenied && !EndedByRefusedCall(call) ? eRefused : eFailed;
    return {hasInstances ? ePartial : none, DataCallFailed(library, call)};
}

// A value that the machine does not have is not missing. One that it has and that could not be read is.
bool IsValueMissing(const TReason& absence) {
    return absence.code == EReason::eNoPermission || absence.code == EReason::eReadError;
}

TReason MissingValues(const TCIMClass& cls) {
    if (cls.FindPropertyDecl("UnavailableValues") == nullptr) return {};
    std::vector<TReason> missing;
    for (const TCIMInstance* instance : cls.EnumerateInstances(false))
        for (const TReason& absence : AbsencesOf(*instance))
            if (IsValueMissing(absence)) missing.push_back(absence);
    if (missing.empty()) return {};
    TTexts texts;
    for (size_t i = 0; i < missing.size() && i < kMostValuesNamed; ++i)
        texts.push_back(missing[i].property + ": " + SentenceOf(missing[i]));
    if (missing.size() > kMostValuesNamed)
        texts.push_back("and " + std::to_string(missing.size() - kMostValuesNamed) + " more");
    TReason reason = missing.front();
    reason.code = EReason::eValuesUnreadable;
    reason.detail = Join(texts, "; ");
    return reason;
}

// The first thing that the class needs and its plugin may not do, so that nobody can say whether anything is missing.
TReason MissingGrant(const TPluginLibrary& library, const TCIMClass& cls) {
    if (!library.isConfined) return {};
    const std::string need = library.FindUngranted(cls);
    return need.empty() ? TReason() : NotGranted(library, need);
}

}  // namespace

TOutcome FindClassOutcome(const TPluginLibrary& library, const TCIMClass& cls, const TClassSelection& wanted) {
    if (!wanted.Includes(cls.GetName())) return {eNotAsked, ReasonFor(EReason::eNotSelected)};
    const TPluginReport& report = library.report;
    const bool hasInstances = !cls.EnumerateInstances(false).empty();
    const TDataCall* const call = report.FindDataCall(cls.GetName());
    if (call == nullptr) return FindNotAskedOutcome(library, cls, wanted, hasInstances);
    if (report.end.state != eComplete)
        return {hasInstances || call->finished ? ePartial : report.end.state, report.end.reason};
    const TReason ungranted = MissingGrant(library, cls);
    if (ungranted) return {hasInstances ? ePartial : eRefused, ungranted};
    const TErrors errors = ErrorsOf(library, &cls);
    if (!errors.empty()) return {hasInstances ? ePartial : eFailed, ErrorsLogged(errors, &cls)};
    if (call->failure) return FindFailedCallOutcome(library, *call, hasInstances);
    if (const auto sources = library.missingSources.find(cls.GetName()); sources != library.missingSources.end())
        return {hasInstances ? ePartial : eNoSource, sources->second.front()};
    const TReason missing = MissingValues(cls);
    return missing ? TOutcome{ePartial, missing} : TOutcome();
}

namespace {

/// The outcomes of all classes of a library together.
struct TClassOutcomes {
    size_t asked = 0;
    size_t missing = 0;
    bool hasDelivered = false;  // some class is complete or partial
    TOutcome first;             // of the first class that is missing, or else of the first that was not asked for
};

TClassOutcomes FindClassOutcomes(const TPluginLibrary& library, const TClassSelection& wanted) {
    TClassOutcomes all;
    for (const TCIMClass* cls : library.classes) {
        if (cls->IsAbstract()) continue;
        const TOutcome outcome = FindClassOutcome(library, *cls, wanted);
        all.hasDelivered |= outcome.state <= ePartial;
        all.asked += outcome.state != eNotAsked;
        if (IsMissing(outcome) ? all.missing++ == 0 : all.first.state == eComplete) all.first = outcome;
    }
    return all;
}

// Why the plugin is not complete, apart from the reasons of its classes: others have some of them, a data call failed,
// or it logged errors that are about no class.
TReason OwnReason(const TPluginLibrary& library, const TClassSelection& wanted) {
    if (const TReason taken = ClassesTaken(library, wanted)) return taken;
    for (const TDataCall& call : library.report.dataCalls)
        if (call.failure) return FindFailedCallOutcome(library, call, true).reason;
    const TErrors errors = ErrorsOf(library, nullptr);
    return errors.empty() ? TReason() : ErrorsLogged(errors, nullptr);
}

// Of a plugin that does not own the classes of its library, because another plugin registered before it owns them.
TOutcome FindSecondPluginOutcome(const TPluginReport& report, const TPluginInfo& plugin) {
    if (!plugin.initialised) return {eRefused, ReasonFor(EReason::eInitFailed, report.FirstError())};
    if (plugin.type != kyrPluginDataCollector) return {eNotAsked, ReasonFor(EReason::eNoData)};
    TReason reason = ReasonFor(EReason::eClassesTaken);
    reason.plugin = report.FindOwner()->name;
    return {eRefused, reason};
}

}  // namespace

TOutcome FindPluginOutcome(const TPluginLibrary& library, const TPluginInfo* plugin, const TClassSelection& wanted) {
    const TOutcome loading = FindLibraryOutcome(library);
    const TClassOutcomes classes = FindClassOutcomes(library, wanted);
    if (loading.state != eComplete) return {classes.hasDelivered ? ePartial : loading.state, loading.reason};
    if (plugin != library.report.FindOwner()) return FindSecondPluginOutcome(library.report, *plugin);
    const TReason reason = OwnReason(library, wanted);
    if (classes.missing == 0 && !reason) return classes.asked != 0 ? TOutcome() : classes.first;
    const bool isPartial = classes.hasDelivered || classes.missing == 0;
    return {isPartial ? ePartial : classes.first.state, reason};
}

std::vector<const TMessage*> MessagesOf(const TPluginLibrary& library, const TCIMClass* cls) {
    const auto isOfLibrary = [&](const std::string& name) {
        return std::any_of(library.classes.begin(), library.classes.end(),
                           [&](const TCIMClass* one) { return one->GetName() == name; });
    };
    std::vector<const TMessage*> messages;
    for (const TMessage& message : library.report.messages)
        if (cls == nullptr ? !isOfLibrary(message.className) : message.className == cls->GetName())
            messages.push_back(&message);
    return messages;
}

TReason PluginsIncomplete(size_t incomplete, size_t all) {
    if (incomplete == 0) return {};
    return ReasonFor(EReason::ePluginsIncomplete, std::to_string(incomplete) + " of " + std::to_string(all));
}
