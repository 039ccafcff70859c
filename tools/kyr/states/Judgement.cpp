#include "states/Judgement.h"

#include <algorithm>

#include "inventory/Libraries.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/kyrPlugin.h"
#include "states/UnavailableValues.h"

namespace {

// "the first (and 2 more)"
std::string FirstAndCount(const std::vector<std::string>& texts) {
    if (texts.size() < 2) return texts.front();
    return texts.front() + " (and " + std::to_string(texts.size() - 1) + " more)";
}

// Without the name of the class in front, which is told beside it.
std::string ReasonIn(const TNote& note) {
    const std::string front = note.className + ": ";
    return note.text.compare(0, front.size(), front) == 0 ? note.text.substr(front.size()) : note.text;
}

// Those of the class, or with null those of none.
std::vector<std::string> ErrorsOf(const TLibrary& library, const TCIMClass* cls) {
    std::vector<std::string> texts;
    for (const TNote* note : NotesOf(library, cls))
        if (note->severity == kyrLogError) texts.push_back(cls == nullptr ? note->text : ReasonIn(*note));
    return texts;
}

// What the log says first, or nothing.
std::string FirstError(const TPluginReport& report) {
    for (const TNote& note : report.notes)
        if (note.severity == kyrLogError) return note.text;
    return "";
}

std::string Without(const std::string& start, const std::string& text) {
    return text.compare(0, start.size(), start) == 0 ? text.substr(start.size()) : text;
}

TVerdict JudgeNothingRegistered(const TPluginReport& report) {
    const std::string error = FirstError(report);
    if (error.empty()) return {eRefused, "it registers no plugin"};
    return {eRefused, "cannot be opened: " + Without("ERROR: Failed to load plugin.  Reason: ", error)};
}

TVerdict JudgeInit(const TPluginReport& report) {
    const std::string error = FirstError(report);
    return {eRefused, "its init entry failed" + (error.empty() ? "" : ": " + error)};
}

TVerdict JudgeDocument(const TLibrary& library) {
    const std::string error = FirstError(library.report), reason = library.report.refusal;
    const std::string text = "cannot read its document " + DocumentOf(library) + ": " + reason;
    return {eRefused, error.empty() ? text : text + ": " + error};
}

// How far the library came, whatever its classes gave.
TVerdict JudgeLibrary(const TLibrary& library) {
    const TPluginReport& report = library.report;
    if (report.end.state != eComplete) return report.end;
    if (report.plugins.empty()) return JudgeNothingRegistered(report);
    if (!report.refusal.empty()) return JudgeDocument(library);
    const TPluginFacts* const owner = report.FindOwner();
    const bool initialised =
        std::all_of(report.plugins.begin(), report.plugins.end(), [](const TPluginFacts& p) { return p.initialised; });
    if (owner == nullptr && !initialised) return JudgeInit(report);
    if (owner == nullptr || (library.classes.empty() && owner->type == kyrPluginDocumentOnly))
        return {eNotAsked, kReasonNoData};
    if (library.classes.empty()) return {eRefused, "its document brings no class of its own"};
    return {};
}

bool IsMarkedDontCollect(const TCIMClass& cls) {
    const TCIMQualifier* const mark = cls.FindQualifier("DONTCOLLECT");
    return mark != nullptr && !mark->GetValue().IsNull() && mark->GetValue() == TCIMValue(true);
}

bool IsWanted(const TCIMClass& cls, TWanted wanted) {
    return wanted == nullptr || wanted->empty() ||
           std::find(wanted->begin(), wanted->end(), cls.GetName()) != wanted->end();
}

TVerdict JudgeUnasked(const TLibrary& library, const TCIMClass& cls, TWanted wanted, bool any) {
    if (!IsWanted(cls, wanted)) return {eNotAsked, kReasonUnwanted};
    if (IsMarkedDontCollect(cls)) return {eNotAsked, kReasonDontCollect};
    const TVerdict whole = JudgeLibrary(library);
    if (whole.state != eComplete) return {any ? ePartial : whole.state, whole.reason};
    if (any) return {};
    if (wanted == nullptr) return {eNotAsked, kReasonSchemaOnly};
    return {eNotAsked, kReasonNoData};
}

// With the errors that name none of its classes.
TVerdict JudgeEnd(const TLibrary& library, const std::string& end, bool any) {
    const EState none = end == kyrTranslateStatusCode(kyrStatusAccessDenied) ? eRefused : eFailed;
    const std::vector<std::string> errors = ErrorsOf(library, nullptr);
    return {any ? ePartial : none,
            "its answer ended with " + end + (errors.empty() ? "" : ": " + FirstAndCount(errors))};
}

}  // namespace

TVerdict JudgeClass(const TLibrary& library, const TCIMClass& cls, TWanted wanted) {
    const TPluginReport& report = library.report;
    const bool any = !cls.EnumerateInstances(false).empty();
    const TPass* const pass = report.FindPass(cls.GetName());
    if (pass == nullptr) return JudgeUnasked(library, cls, wanted, any);
    if (report.end.state != eComplete) return {any || pass->finished ? ePartial : report.end.state, report.end.reason};
    const std::vector<std::string> errors = ErrorsOf(library, &cls);
    if (!errors.empty()) return {any ? ePartial : eFailed, FirstAndCount(errors)};
    if (!pass->end.empty()) return JudgeEnd(library, pass->end, any);
    const std::string unavailable = TellUnavailableValues(cls);
    return unavailable.empty() ? TVerdict() : TVerdict{ePartial, unavailable};
}

namespace {

struct TTally {
    size_t asked = 0;
    size_t missing = 0;
    bool any = false;  // something came
    TVerdict first;    // of what is missing, or else of what was not asked
};

TTally Count(const TLibrary& library, TWanted wanted) {
    TTally tally;
    for (const TCIMClass* cls : library.classes) {
        if (cls->IsAbstract()) continue;
        const TVerdict verdict = JudgeClass(library, *cls, wanted);
        tally.any |= verdict.state <= ePartial;
        tally.asked += verdict.state != eNotAsked;
        if (IsMissing(verdict) ? tally.missing++ == 0 : tally.first.state == eComplete) tally.first = verdict;
    }
    return tally;
}

// Why the plugin as a whole is not complete, if its classes do not say it all.
std::string OwnReason(const TLibrary& library) {
    const TPluginReport& report = library.report;
    for (const TPass& pass : report.passes)
        if (!pass.end.empty()) return JudgeEnd(library, pass.end, true).reason;
    const std::vector<std::string> errors = ErrorsOf(library, nullptr);
    return errors.empty() ? "" : FirstAndCount(errors);
}

// It shares its library, and so its document, with the owner.
TVerdict JudgeOther(const TPluginReport& report, const TPluginFacts& plugin) {
    if (!plugin.initialised) return JudgeInit(report);
    if (plugin.type != kyrPluginDataCollector) return {eNotAsked, kReasonNoData};
    return {eRefused,
            "the classes go to plugin " + report.FindOwner()->name + ", which its library registers before it"};
}

}  // namespace

TVerdict JudgePlugin(const TLibrary& library, const TPluginFacts* plugin, TWanted wanted) {
    const TVerdict whole = JudgeLibrary(library);
    const TTally tally = Count(library, wanted);
    if (whole.state != eComplete) return {tally.any ? ePartial : whole.state, whole.reason};
    if (plugin != library.report.FindOwner()) return JudgeOther(library.report, *plugin);
    const std::string reason = OwnReason(library);
    if (tally.missing == 0 && reason.empty()) return tally.asked != 0 ? TVerdict() : tally.first;
    const bool partial = tally.any || tally.missing == 0;
    return {partial ? ePartial : tally.first.state, reason};
}

std::vector<const TNote*> NotesOf(const TLibrary& library, const TCIMClass* cls) {
    const auto isOurs = [&](const std::string& name) {
        return std::any_of(library.classes.begin(), library.classes.end(),
                           [&](const TCIMClass* one) { return one->GetName() == name; });
    };
    std::vector<const TNote*> notes;
    for (const TNote& note : library.report.notes)
        if (cls == nullptr ? !isOurs(note.className) : note.className == cls->GetName()) notes.push_back(&note);
    return notes;
}

bool IsMissing(const TVerdict& verdict) {
    if (verdict.state != eNotAsked) return verdict.state != eComplete;
    const auto harmless = {kReasonUnwanted, kReasonDontCollect, kReasonNoData, kReasonSchemaOnly};
    return std::find(harmless.begin(), harmless.end(), verdict.reason) == harmless.end();
}

std::string PluginsMissing(size_t missing, size_t all) {
    if (missing == 0) return "";
    return std::to_string(missing) + " of " + std::to_string(all) + " plugins are not complete";
}
