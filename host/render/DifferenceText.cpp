#include "render/DifferenceText.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>

#include "base/Text.h"
#include "difference/Difference.h"
#include "difference/Identity.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/Associations.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"
#include "model/SpokenNames.h"
#include "model/Values.h"

namespace {

constexpr const char* kMarks[] = {"  - ", "  + ", "  > ", "  ~ ", "  ? "};  // by EChange
constexpr const char* kNoMark = "    ";
constexpr const char* kWords[] = {" removed", " added", " moved", " changed", " no longer readable"};
static_assert(std::size(kMarks) == kChanges && std::size(kWords) == kChanges);

constexpr size_t kLongestName = 32;  // longer ones push the rest of their line to the right
constexpr size_t kMostDetails = 6;
constexpr size_t kMostReason = 300;  // in bytes

std::string TextOfValue(const TCIMProperty& property) {
    if (property.GetValue().IsNull()) return "none";
    const std::string text = property.IsArray() ? Join(DisplayElements(property)) : DisplayText(property);
    return text.empty() ? "\"\"" : text;
}

// Empty if there is no such property or it has no value.
std::string TextIfAny(const TCIMInstance& instance, const std::string& name) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? "" : TextOfValue(*property);
}

// Whether a key says only to which machine and class an instance belongs.
bool IsScopeKey(const std::string& name) {
    return IsSameName(name, "SystemName") || IsSameName(name, "CSName") || EndsWith(name, "CreationClassName");
}

// The keys by which the instance differs from others of its class on its machine.
std::string KeyText(const TCIMInstance& instance) {
    std::vector<std::string> texts;
    for (const std::string& key : instance.GetClass()->EnumerateKeyNames())
        if (!IsScopeKey(key)) texts.push_back(TextIfAny(instance, key));
    return texts.empty() ? VisiblePath(instance) : Join(texts);
}

// What the association ties together: "DiskDrive /dev/sda  DiskPartition /dev/sda1".
std::string EndsText(const TCIMInstance& association) {
    std::vector<std::string> texts;
    for (const TAssociationEnd& end : EndsOf(association))
        texts.push_back(end.instance == nullptr
                            ? VisibleText(end.reference.GetPath())
                            : SpokenNameOf(end.reference.GetClassName()) + " " + KeyText(*end.instance));
    return Join(texts, "  ");
}

std::vector<std::string> ColumnsIn(const TCIMClass& cls) { return QualifierTexts(cls, "Columns"); }

/// The names of the instances of one class, as the lines about them begin.
class TInstanceNames {
public:
    // What the first column says, with the keys if others of the class have the same there.
    std::string NameOf(const TCIMInstance& instance) {
        const TCIMClass& cls = *instance.GetClass();
        if (cls.IsAssociation()) return EndsText(instance);
        const std::string name = TextIfAny(instance, FirstColumnOf(cls).property);
        const std::string keys = KeyText(instance);
        if (name.empty() || name == keys) return keys;
        return FirstColumnOf(cls).counts[name] > 1 ? name + " (" + keys + ")" : name;
    }

private:
    struct TFirstColumn {
        std::string property;
        std::unordered_map<std::string, size_t> counts;  // how often the class has each text there
    };

    TFirstColumn& FirstColumnOf(const TCIMClass& cls) {
        const auto [found, isNew] = fFirstColumns.try_emplace(&cls);
        TFirstColumn& column = found->second;
        if (!isNew) return column;
        if (const std::vector<std::string> columns = ColumnsIn(cls); !columns.empty())
            column.property = columns.front();
        for (const TCIMInstance* instance : cls.EnumerateInstances(false))
            ++column.counts[TextIfAny(*instance, column.property)];
        return column;
    }

    std::map<const TCIMClass*, TFirstColumn> fFirstColumns;
};

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

// Those that would not be told from others, or from nothing, are in quotes.
std::vector<std::string> ElementTexts(const TCIMProperty& property) {
    std::vector<std::string> texts = RawElements(property.GetValue());
    for (std::string& text : texts)
        if (text.find_first_of(" ,") != std::string::npos || text.empty()) text = Quoted(text);
    return texts;
}

// Without its name: a boolean does not.
bool SaysSomethingAlone(const TCIMProperty& property) {
    return property.GetType() != TCIMValue::TCIMType::eCIMBoolean && !IsVolatile(property.GetDeclaration());
}

bool IsToldAlone(const TCIMProperty* property) {
    return property != nullptr && !property->GetValue().IsNull() && SaysSomethingAlone(*property);
}

// The other columns, as far as they have values that stay, and what tells the thing from others like it.
std::string DetailsOf(const TCIMInstance& instance) {
    const TCIMClass& cls = *instance.GetClass();
    const std::vector<std::string> columns = ColumnsIn(cls);
    std::vector<std::string> texts;
    std::set<std::string, TNameLess> told;
    for (size_t i = 1; i < columns.size() && texts.size() < kMostDetails; ++i) {
        const TCIMProperty* const property = instance.FindProperty(columns[i]);
        if (!IsToldAlone(property)) continue;
        texts.push_back(TextOfValue(*property));
        told.insert(columns[i]);
    }
    for (const std::string& name : IdentityPropertiesOf(cls, cls)) {
        const TCIMProperty* const property = instance.FindProperty(name);
        if (told.count(name) == 0 && IsToldAlone(property)) texts.push_back(name + " " + TextOfValue(*property));
    }
    return Join(texts, "  ");
}

std::string ElementsText(const TElementDifference& elements) {
    std::vector<std::string> texts;
    for (const std::string& element : elements.added) texts.push_back("+" + element);
    for (const std::string& element : elements.removed) texts.push_back("-" + element);
    return Join(texts, " ");
}

// Two sizes may differ by less than what is printed of them, and two texts by a blank at their ends.
std::string ExactText(const TCIMProperty& property) {
    if (property.GetValue().IsNull()) return "no value";
    if (property.GetType() == TCIMValue::TCIMType::eCIMString) return Quoted(PlainText(property.GetValue()));
    const std::string unit = QualifierText(property.GetDeclaration(), "Units");
    return PlainText(property.GetValue()) + (unit.empty() ? "" : " " + unit);
}

std::string ChangeText(const TPropertyDifference& property) {
    const TCIMProperty& old = *property.before;
    const TCIMProperty& present = *property.after;
    const bool haveValues = !old.GetValue().IsNull() && !present.GetValue().IsNull();
    const std::string name = present.GetName() + "  ";
    if (haveValues && present.GetType() == kStringArray)
        return name + ElementsText(CompareElements(ElementTexts(old), ElementTexts(present)));
    const std::string reason = property.reason.empty() ? "" : " (" + VisibleText(property.reason) + ")";
    std::string was = TextOfValue(old), is = TextOfValue(present);
    if (was == is) {
        was = ExactText(old);
        is = ExactText(present);
    }
    return name + was + " -> " + is + reason;
}

std::string UnreadableText(const TPropertyDifference& property) {
    return property.after->GetName() + "  no longer readable (" + VisibleText(property.reason) + ")";
}

std::vector<std::string> LinesOf(const TChange& change) {
    std::vector<std::string> lines;
    if (change.kind == EChange::eRemoved) return {DetailsOf(*change.before)};
    if (change.kind == EChange::eAdded) return {DetailsOf(*change.after)};
    if (change.kind == EChange::eMoved) lines.push_back(KeyText(*change.before) + " -> " + KeyText(*change.after));
    const auto text = change.kind == EChange::eUnreadable ? UnreadableText : ChangeText;
    std::transform(change.properties.begin(), change.properties.end(), std::back_inserter(lines), text);
    return lines;
}

std::string MachineText(const TScope& scope) {
    std::vector<std::string> texts;
    const std::pair<const char*, const char*> facts[] = {
        {"MachineID", "machine ID "}, {"UUID", "UUID "}, {"SerialNumber", "serial "}};
    for (const auto& [property, word] : facts)
        if (const std::string text = scope.TextOfSystem(property); !text.empty())
            texts.push_back(word + VisibleText(text));
    return VisibleText(scope.Name()) + (texts.empty() ? "" : " (" + Join(texts) + ")");
}

std::string CountText(size_t count, const char* what, const char* several) {
    return std::to_string(count) + (count == 1 ? what : several);
}

class TDifferenceText {
public:
    TDifferenceText(const TDifference& difference, TOutput& output) : fDifference(difference), fOutput(output) {
        const auto& limits = difference.notCompared;
        std::copy_if(limits.begin(), limits.end(), std::back_inserter(fLimits),
                     [](const TNotCompared& each) { return !each.before.IsLeftOut() || !each.after.IsLeftOut(); });
    }

    void Print() {
        if (IsSameMachine(fDifference.before, fDifference.after) == false)
            fOutput.WriteWrapped(
                "two machines: " + MachineText(fDifference.before) + " and " + MachineText(fDifference.after), "");
        PrintFileChange("OLD", fDifference.fileChangeBefore);
        PrintFileChange("NEW", fDifference.fileChangeAfter);
        for (const TClassChanges& cls : fDifference.classes) PrintClass(cls);
        PrintNotCompared();
        PrintCounts();
    }

private:
    void PrintFileChange(const char* side, const std::string& change) {
        if (!change.empty()) fOutput.WriteWrapped(std::string(side) + ": " + VisibleText(change), "");
    }

    void PrintClass(const TClassChanges& cls) {
        fOutput.Write(fOutput.Bold(SpokenNameOf(cls.name)) + "\n");
        TInstanceNames names;
        std::vector<std::string> starts;
        size_t width = 0;
        for (const TChange& change : cls.changes) {
            starts.push_back(change.kind == EChange::eMoved
                                 ? VisibleText(change.identity)
                                 : names.NameOf(change.after == nullptr ? *change.before : *change.after));
            if (const size_t columns = ColumnsOf(starts.back()); columns <= kLongestName)
                width = std::max(width, columns);
        }
        for (size_t i = 0; i < starts.size(); ++i) PrintChange(cls.changes[i], starts[i], width);
    }

    void PrintChange(const TChange& change, std::string name, size_t width) {
        const char* mark = kMarks[static_cast<size_t>(change.kind)];
        for (const std::string& line : LinesOf(change)) {
            if (const size_t columns = ColumnsOf(name); !line.empty() && columns < width)
                name.append(width - columns, ' ');
            fOutput.WriteWrapped(line.empty() ? name : name + "  " + line, mark);
            name.assign(width, ' ');
            mark = kNoMark;
        }
    }

    void PrintNotCompared() {
        bool any = false;
        for (const TNotCompared& limits : fLimits)
            for (const std::string& line : LimitLines(limits)) {
                if (!std::exchange(any, true)) fOutput.Write(fOutput.Bold("not compared") + "\n");
                fOutput.WriteWrapped(SpokenNameOf(limits.name) + "  " + line, "  ");
            }
        PrintSummary("left out on purpose", [](const TNotCompared& limits) { return IsLeftOut(limits); });
        PrintSummary("incomplete on both sides for the same reason",
                     [](const TNotCompared& limits) { return IsMissingAlike(limits); });
        PrintSummary("not known in OLD",
                     [](const TNotCompared& limits) { return !limits.before.IsKnown() && !IsLeftOut(limits); });
        PrintSummary("not known in NEW",
                     [](const TNotCompared& limits) { return !limits.after.IsKnown() && !IsLeftOut(limits); });
    }

    static bool HasUnseen(const TNotCompared& limits) { return limits.onlyBefore + limits.onlyAfter > 0; }

    // That is told once, of the whole file.
    static bool IsOfChangedFile(const TNotCompared& limits) {
        const auto isToldElsewhere = [](const TClassState& state) {
            return state.IsWhole() || state.outcome.code == EReason::eFileChanged;
        };
        return isToldElsewhere(limits.before) && isToldElsewhere(limits.after);
    }

    static bool IsLeftOut(const TNotCompared& limits) {
        return !limits.commonCompared && (limits.before.IsLeftOut() || limits.after.IsLeftOut());
    }

    static bool IsMissingAlike(const TNotCompared& limits) {
        return !HasUnseen(limits) && !limits.before.IsWhole() && limits.before.IsKnown() && !IsLeftOut(limits) &&
               IsSameState(limits.before, limits.after);
    }

    // None for classes of which there are many for one reason: they are told together.
    static std::vector<std::string> LimitLines(const TNotCompared& limits) {
        if (IsLeftOut(limits) || !limits.before.IsKnown() || !limits.after.IsKnown()) return {};
        std::vector<std::string> lines;
        if (HasUnseen(limits) || (!IsSameState(limits.before, limits.after) && !IsOfChangedFile(limits)))
            lines.push_back(StatesText(limits));
        AddUnknown(limits.unknownBefore, "OLD", lines);
        AddUnknown(limits.unknownAfter, "NEW", lines);
        return lines;
    }

    static std::string StatesText(const TNotCompared& limits) {
        std::vector<std::string> texts;
        if (!limits.before.IsWhole()) texts.push_back(StateText(limits.before, "OLD"));
        if (!limits.after.IsWhole()) texts.push_back(StateText(limits.after, "NEW"));
        if (limits.onlyBefore > 0) texts.push_back(std::to_string(limits.onlyBefore) + " not seen in NEW");
        if (limits.onlyAfter > 0) texts.push_back(std::to_string(limits.onlyAfter) + " not seen in OLD");
        return Join(texts, "; ");
    }

    static std::string StateText(const TClassState& state, const char* side) {
        const std::string reason = VisibleText(CutText(state.outcome.text, kMostReason));
        return state.word + " in " + side + (reason.empty() ? "" : ": " + reason);
    }

    static void AddUnknown(const std::vector<std::string>& names, const char* side, std::vector<std::string>& lines) {
        if (!names.empty()) lines.push_back(std::string("not known in ") + side + ": " + Join(names));
    }

    template <typename TIs>
    void PrintSummary(const char* what, TIs is) {
        std::vector<std::string> names;
        for (const TNotCompared& limits : fLimits)
            if (is(limits)) names.push_back(SpokenNameOf(limits.name));
        if (names.empty()) return;
        const std::string count = CountText(names.size(), " class ", " classes ");
        fOutput.WriteWrapped(count + what + ": " + Join(names), "");
    }

    void PrintCounts() {
        std::vector<std::string> texts;
        for (size_t kind = 0; kind < kChanges; ++kind)
            if (const size_t count = fDifference.Count(static_cast<EChange>(kind)); count > 0)
                texts.push_back(std::to_string(count) + kWords[kind]);
        std::string line = texts.empty() ? "no changes" : Join(texts);
        const auto& limits = fLimits;
        const auto partly =
            std::count_if(limits.begin(), limits.end(), [](const TNotCompared& each) { return each.commonCompared; });
        const size_t wholly = limits.size() - static_cast<size_t>(partly);
        if (wholly > 0) line += "; " + CountText(wholly, " class not compared", " classes not compared");
        if (partly > 0)
            line +=
                "; " + CountText(static_cast<size_t>(partly), " class compared in part", " classes compared in part");
        fOutput.WriteWrapped(line, "");
    }

    const TDifference& fDifference;
    std::vector<TNotCompared> fLimits;  // save what was left out of both on purpose: nobody misses that
    TOutput& fOutput;
};

}  // namespace

void PrintDifference(const TDifference& difference, TOutput& output) { TDifferenceText(difference, output).Print(); }
