#include "export/Changes.h"

#include <algorithm>
#include <iterator>

#include "base/Text.h"
#include "difference/Difference.h"
#include "export/Cells.h"
#include "export/RunSink.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/SpokenNames.h"
#include "model/Values.h"

namespace {

constexpr const char* kOperations[] = {"removed", "added", "moved", "changed", "unreadable"};  // by EChange
static_assert(std::size(kOperations) == kChanges);
constexpr const char* kNotCompared = "not compared";

std::string TextOfValue(const TCIMProperty* property) {
    if (property == nullptr || property->GetValue().IsNull()) return "";
    return ValueText(*property, false);
}

std::string NameOf(const TCIMInstance* instance) { return instance == nullptr ? "" : DisplayName(*instance); }

std::string StateText(const TClassState& state) {
    if (!state.IsKnown()) return "not known";
    const std::string reason = VisibleText(state.outcome.text);
    return reason.empty() ? state.word : state.word + ": " + reason;
}

/// Writes the rows for two runs.
class TChangeRows {
public:
    TChangeRows(const std::string& changedAt, const std::string& previousAt, IRunSink& sink)
        : fChangedAt(changedAt), fPreviousAt(previousAt), fSink(sink) {}

    void Write(const std::string& className, const TChange& change) {
        const char* const operation = kOperations[static_cast<size_t>(change.kind)];
        const std::string path = VisiblePath(change.after == nullptr ? *change.before : *change.after);
        WriteRow(className, path, operation, "", NameOf(change.before), NameOf(change.after));
        for (const TPropertyDifference& property : change.properties)
            WriteRow(className, path, operation, NameOfProperty(property), TextOfValue(property.before),
                     TextOfValue(property.after));
    }

    // A class that is incomplete alike in both is no change. One that is left out now has that as its state; one that
    // was left out before and is back may have changed meanwhile.
    void Write(const TNotCompared& limits) {
        const bool isAlike = IsSameState(limits.before, limits.after) && limits.onlyBefore + limits.onlyAfter == 0;
        if (limits.after.IsLeftOut() || isAlike) return;
        WriteRow(limits.name, "", kNotCompared, "", StateText(limits.before), StateText(limits.after));
    }

    void WriteRow(const std::string& className, const std::string& path, const char* operation,
                  const std::string& property, const std::string& old, const std::string& present) {
        TRow row;
        for (const std::string& text :
             {fChangedAt, fPreviousAt, className, path, std::string(operation), property, old, present})
            row.cells.push_back(TextCell(text));
        fSink.Row(ChangeTable(), std::move(row));
    }

private:
    static std::string NameOfProperty(const TPropertyDifference& property) {
        return (property.after == nullptr ? property.before : property.after)->GetName();
    }

    const std::string fChangedAt;
    const std::string fPreviousAt;
    IRunSink& fSink;
};

// Of classes that neither knows nothing differs.
std::vector<std::string> KnownClasses(const TMoment& before, const TMoment& after,
                                      const std::vector<std::string>& classes) {
    std::vector<std::string> known;
    std::copy_if(classes.begin(), classes.end(), std::back_inserter(known), [&](const std::string& name) {
        return !FindSpokenClass(before.container, name).classes.empty() ||
               !FindSpokenClass(after.container, name).classes.empty();
    });
    return known;
}

}  // namespace

void WriteChanges(const TMoment& before, const TMoment& after, const std::vector<std::string>& classes,
                  IRunSink& sink) {
    TDifferenceOptions options;
    options.classes = KnownClasses(before, after, classes);
    if (options.classes.empty() && !classes.empty()) return;
    const TDifference difference = FindDifference(before.container, after.container, options);
    TChangeRows rows(after.collectedAt, before.collectedAt, sink);
    for (const TClassChanges& cls : difference.classes)
        for (const TChange& change : cls.changes) rows.Write(cls.name, change);
    for (const TNotCompared& limits : difference.notCompared) rows.Write(limits);
}

void WriteNotCompared(const std::string& previousAt, const std::string& changedAt, const std::string& why,
                      IRunSink& sink) {
    TChangeRows(changedAt, previousAt, sink).WriteRow("", "", kNotCompared, "", VisibleText(why), "");
}
