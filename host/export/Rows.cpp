#include "export/Rows.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "base/Text.h"
#include "difference/Identity.h"
#include "export/Cells.h"
#include "export/ClassTable.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "model/CollectionState.h"
#include "model/InstanceChoice.h"
#include "model/Provenance.h"
#include "model/Qualifiers.h"
#include "model/ReadingOrder.h"
#include "model/SpokenNames.h"
#include "model/ValueVisitor.h"
#include "model/Values.h"
#include "states/HostIdentity.h"
#include "states/StateInstances.h"

namespace {

constexpr const char* kUnavailableValues = "UnavailableValues";

bool IsLength(const TCIMValue& value) {
    if (value.GetType() != TCIMValue::TCIMType::eCIMDateTime || value.IsNull()) return false;
    const TCIMDateTime moment = value;
    return !moment.IsNull() && moment.IsInterval();
}

std::string WordOf(const TCIMInstance& state, const char* name) {
    const TCIMProperty* const property = state.FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? "" : DisplayText(*property);
}

/// What the keys of the scope say of all instances, so that it need not stand in each row.
struct TExpectedScope {
    std::string host;
    std::string systemClass;

    const std::string& Of(const std::string& key, const std::string& className) const {
        if (IsSameName(key, "CreationClassName")) return className;
        return EndsWith(key, "Name") && !EndsWith(key, "ClassName") ? host : systemClass;
    }
};

std::string SystemClassOf(const TContainer& container) {
    const TCIMClass* const systems = FindClassNamed(container, "CIM_ComputerSystem");
    if (systems == nullptr) return kHostClass;
    const std::vector<TCIMInstance*> found = systems->EnumerateInstances(true);
    return found.size() == 1 ? found.front()->GetClass()->GetName() : kHostClass;
}

/// Makes the rows of one collection.
class TRowMaker {
public:
    TRowMaker(const TContainer& container, const TRowOptions& options, TClassTables& tables, IRunSink& sink)
        : fContainer(container),
          fOptions(options),
          fTables(tables),
          fSink(sink),
          fScope{HostTextOf(container, kHostTexts[0]), SystemClassOf(container)},
          fClasses(ClassesToWrite()) {}

    void Write() {
        NumberInstances();
        const std::vector<std::string> names = TableNamesOf(fClasses);
        for (size_t i = 0; i < fClasses.size(); ++i) WriteClass(*fClasses[i], names[i]);
        WriteStates();
    }

private:
    using TProperties = std::vector<const TCIMProperty*>;

    std::vector<TCIMClass*> ClassesToWrite() const {
        std::vector<TCIMClass*> classes = ChosenClasses();
        const auto isOut = [](const TCIMClass* cls) {
            return cls->IsAbstract() && cls->EnumerateInstances(false).empty();
        };
        classes.erase(std::remove_if(classes.begin(), classes.end(), isOut), classes.end());
        return classes;
    }

    std::vector<TCIMClass*> ChosenClasses() const {
        if (fOptions.classes.empty()) return SelectAllClasses(fContainer);
        const std::vector<std::string> known = KnownClasses(fContainer, fOptions.classes);
        return known.empty() ? std::vector<TCIMClass*>() : TInstanceChoice(fContainer, known, {}).Classes();
    }

    void NumberInstances() {
        for (const TCIMClass* cls : fClasses)
            for (const TCIMInstance* instance : cls->EnumerateInstances(false))
                fNumbers.emplace(instance, static_cast<int64_t>(fNumbers.size() + 1));
    }

    void WriteClass(const TCIMClass& cls, const std::string& name) {
        const std::vector<TCIMInstance*> instances = cls.EnumerateInstances(false);
        fTable = &fTables.Of(cls, name, RareColumnsOf(cls, instances));
        fSink.Table(fTable->table);
        for (const TCIMInstance* instance : instances) fSink.Row(fTable->table, RowOf(*instance));
    }

    TRareColumns RareColumnsOf(const TCIMClass& cls, const std::vector<TCIMInstance*>& instances) const {
        TRareColumns rare;
        const std::vector<const TCIMPropertyDecl*> declarations = cls.EnumeratePropertyDecls();
        for (size_t i = 0; i < declarations.size(); ++i) {
            const std::string& name = declarations[i]->GetName();
            if (IsScopeKey(name) && IsKey(*declarations[i]) &&
                AnyIs(instances, i, [&](const TCIMValue& value) { return !IsExpected(value, name, cls.GetName()); }))
                rare.scopeKeys.push_back(i);
            else if (declarations[i]->GetType() == TCIMValue::TCIMType::eCIMDateTime && AnyIs(instances, i, IsLength))
                rare.intervals.push_back(i);
        }
        return rare;
    }

    template <typename TIs>
    static bool AnyIs(const std::vector<TCIMInstance*>& instances, size_t property, TIs is) {
        return std::any_of(instances.begin(), instances.end(), [&](const TCIMInstance* instance) {
            return is(instance->EnumerateProperties()[property]->GetValue());
        });
    }

    bool IsExpected(const TCIMValue& value, const std::string& key, const std::string& className) const {
        if (value.IsNull()) return true;
        const bool isText = value.GetType() == TCIMValue::TCIMType::eCIMString;
        return isText && static_cast<std::string>(value) == fScope.Of(key, className);
    }

    TRow RowOf(const TCIMInstance& instance) {
        const TProperties properties = instance.EnumerateProperties();
        TRow row;
        row.id = fNumbers.at(&instance);
        row.key = KeyOf(properties);
        row.cells.reserve(fTable->sources.size());
        for (size_t i = 0; i < fTable->sources.size(); ++i) {
            row.cells.push_back(CellOf(*properties[fTable->sources[i].property], fTable->sources[i]));
            if (!fFault.empty()) row.missing.push_back({i, std::exchange(fFault, ""), ""});
        }
        AddMissing(instance, row);
        return row;
    }

    std::string KeyOf(const TProperties& properties) const {
        if (fTable->table.isAssociation && !fOptions.paths) return "";
        std::vector<std::string> texts;
        for (const size_t key : fTable->keys) texts.push_back(PlainText(properties[key]->GetValue()));
        return Join(texts, ",");
    }

    TCell CellOf(const TCIMProperty& property, const TColumnSource& source) {
        const TCIMValue value = property.GetValue();
        if (value.IsNull()) return {};
        if (source.part == EPart::eWord) return WordCell(property, value);
        if (source.part == EPart::eTime) return TimeCell(value);
        if (source.part == EPart::eInterval) return IsLength(value) ? TextCell(RawText(value)) : TCell();
        return ValueCell(value, source.unit);
    }

    // A number without a word has none, though it is displayed.
    static TCell WordCell(const TCIMProperty& property, const TCIMValue& value) {
        if (!property.IsArray()) return WordIn(DisplayText(property), value);
        const std::vector<std::string> words = DisplayElements(property);
        const std::vector<TCIMValue>& elements = static_cast<std::vector<TCIMValue>&>(value);
        std::vector<TCell> cells;
        for (size_t i = 0; i < elements.size() && i < words.size(); ++i) cells.push_back(WordIn(words[i], elements[i]));
        return JsonCell(cells, EColumn::eText);
    }

    static TCell WordIn(const std::string& text, const TCIMValue& value) {
        return value.IsNull() || text == PlainText(value) ? TCell() : TextCell(text);
    }

    TCell TimeCell(const TCIMValue& value) {
        const TCIMDateTime moment = value;
        if (moment.IsNull() || moment.IsInterval()) return {};
        if (Exists(moment)) return TextCell(RawText(value));
        fFault = "no date and time that exists: " + moment.ToString();
        return {};
    }

    TCell ValueCell(const TCIMValue& value, const TUnit& unit) {
        TCell cell;
        VisitContent(value,
                     TOverloads{[&](bool isTrue) { cell = IntegerCell(isTrue ? 1 : 0); },
                                [&](float number) { cell = ScaledCell(Widened(number), unit); },
                                [&](double number) { cell = ScaledCell(number, unit); },
                                [&](const std::string& text) { cell = GivenText(text); },
                                [&](const TCIMDateTime& moment) { cell = ElementOf(moment, value); },
                                [&](const TCIMReference& reference) { cell = ReferenceCell(reference); },
                                [&](const std::vector<TCIMValue>& elements) { cell = ArrayCell(elements, unit); },
                                [&](auto number) { cell = ScaledCell(number, unit); }});
        return cell;
    }

    // An empty text is a value.
    static TCell GivenText(const std::string& text) { return {TCell::eText, 0, 0, CellText(text)}; }

    static TCell ElementOf(const TCIMDateTime& moment, const TCIMValue& value) {
        return moment.IsNull() ? TCell() : TextCell(RawText(value));
    }

    TCell ArrayCell(const std::vector<TCIMValue>& elements, const TUnit& unit) {
        std::vector<TCell> cells;
        cells.reserve(elements.size());
        for (const TCIMValue& element : elements)
            cells.push_back(element.IsNull() ? TCell() : ValueCell(element, unit));
        const bool areBooleans = !elements.empty() && elements[0].GetType() == TCIMValue::TCIMType::eCIMBoolean;
        return JsonCell(cells, areBooleans ? EColumn::eBoolean : EColumn::eJson);
    }

    TCell ReferenceCell(const TCIMReference& reference) {
        TCell cell;
        cell.kind = TCell::eReference;
        const auto found = fNumbers.find(FindTarget(reference));
        if (found != fNumbers.end()) cell.integer = found->second;
        if (cell.integer == 0 || fOptions.paths) cell.text = CellText(reference.GetPath());
        return cell;
    }

    // Null if what it refers to was not collected, or cannot be told.
    static const TCIMInstance* FindTarget(const TCIMReference& reference) {
        try {
            return dynamic_cast<const TCIMInstance*>(reference.GetCIMElement());
        } catch (const TKYRException&) {
            return nullptr;
        }
    }

    void AddMissing(const TCIMInstance& instance, TRow& row) const {
        const TCIMProperty* const companion = instance.FindProperty(kUnavailableValues);
        if (companion == nullptr || companion->GetValue().IsNull()) return;
        for (const auto& [property, note] : AbsenceNotesOf(instance)) AddMissing(property, CellText(note), row);
    }

    // Of several columns of the property, the first one is named.
    void AddMissing(const std::string& property, const std::string& note, TRow& row) const {
        const std::vector<TColumn>& columns = fTable->table.columns;
        const auto column = std::find_if(columns.begin(), columns.end(),
                                         [&](const TColumn& each) { return IsSameName(each.property, property); });
        if (column == columns.end()) return;
        const auto index = static_cast<size_t>(column - columns.begin());
        if (row.cells[index].kind != TCell::eNull) return;
        const size_t colon = note.find(": ");
        row.missing.push_back({index, note.substr(0, colon), colon == std::string::npos ? "" : note.substr(colon + 2)});
    }

    void WriteStates() {
        fSink.Table(ClassStateTable());
        fSink.Table(ChangeTable());
        for (const TCIMInstance* state : StatesOf(fContainer, kCollectedClassClass))
            if (const std::string name = TextOf(*state, "Name"); IsToBeTold(name)) WriteState(*state, name);
    }

    bool IsToBeTold(const std::string& name) const {
        return fOptions.classes.empty() || std::any_of(fClasses.begin(), fClasses.end(),
                                                       [&](const TCIMClass* cls) { return cls->GetName() == name; });
    }

    void WriteState(const TCIMInstance& state, const std::string& name) {
        const TCIMClass* const cls = FindClassNamed(fContainer, name);
        const size_t instances = cls == nullptr ? 0 : cls->EnumerateInstances(false).size();
        TRow row;
        row.cells = {TextCell(name),
                     TextCell(TextOf(state, "Plugin")),
                     TextCell(WordOf(state, "State")),
                     TextCell(WordOf(state, "ReasonCode")),
                     TextCell(TextOf(state, "Reason")),
                     IntegerCell(static_cast<int64_t>(instances))};
        fSink.Row(ClassStateTable(), std::move(row));
    }

    const TContainer& fContainer;
    const TRowOptions& fOptions;
    TClassTables& fTables;
    IRunSink& fSink;
    const TExpectedScope fScope;
    const std::vector<TCIMClass*> fClasses;
    std::unordered_map<const TCIMInstance*, int64_t> fNumbers;
    const TClassTable* fTable = nullptr;
    std::string fFault;  // why the last cell is null
};

// Of a text that tells one host from others; empty if it says nothing.
std::string IdentityText(const TContainer& container, const THostText& text) {
    const std::string told = HostTextOf(container, text);
    return IsPlaceholder(told) ? "" : CellText(told);
}

void SetTime(const TCIMInstance& collection, TRun& run) {
    const TCIMProperty* const property = collection.FindProperty("DateTimeOfCollection");
    if (property == nullptr || property->GetType() != TCIMValue::TCIMType::eCIMDateTime) return;
    const TCIMValue value = property->GetValue();
    if (value.IsNull()) return;
    const TCIMDateTime moment = value;
    if (moment.IsNull() || moment.IsInterval() || !Exists(moment)) return;
    run.collectedAt = RawText(value);
    run.collectedMicroseconds = MicrosecondsOf(moment);
}

void SetState(const TCIMInstance& collection, TRun& run) {
    run.tool = CellText(TextOf(collection, "Tool"));
    run.toolVersion = CellText(TextOf(collection, "ToolVersion"));
    run.state = WordOf(collection, "State");
    run.reasonCode = WordOf(collection, "ReasonCode");
    run.reason = CellText(TextOf(collection, "Reason"));
    const TCIMProperty* const superuser = collection.FindProperty("Superuser");
    if (superuser == nullptr || superuser->GetType() != TCIMValue::TCIMType::eCIMBoolean) return;
    if (const TCIMValue value = superuser->GetValue(); !value.IsNull()) run.superuser = static_cast<bool>(value);
}

}  // namespace

TRun RunOf(const TContainer& container) {
    TRun run;
    run.name = CellText(HostTextOf(container, kHostTexts[0]));
    // These have been written in capitals and in small letters.
    run.machineId = LowerCase(IdentityText(container, kHostTexts[1]));
    run.uuid = LowerCase(IdentityText(container, kHostTexts[2]));
    run.serial = IdentityText(container, kHostTexts[3]);
    const std::vector<TCIMInstance*> collections = StatesOf(container, kCollectionClass);
    if (collections.empty()) return run;
    SetTime(*collections.front(), run);
    SetState(*collections.front(), run);
    return run;
}

std::vector<std::string> KnownClasses(const TContainer& container, const std::vector<std::string>& names) {
    std::vector<std::string> known;
    std::copy_if(names.begin(), names.end(), std::back_inserter(known),
                 [&](const std::string& name) { return !FindSpokenClass(container, name).classes.empty(); });
    return known;
}

void WriteRows(const TContainer& container, const TRowOptions& options, TClassTables& tables, IRunSink& sink) {
    TRowMaker(container, options, tables, sink).Write();
}
