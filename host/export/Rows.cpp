#include "export/Rows.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ctime>
#include <unordered_map>

#include "base/Text.h"
#include "difference/Identity.h"
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

using TWriter = rapidjson::Writer<rapidjson::StringBuffer>;
__extension__ typedef __int128 TInteger;  // a 64-bit number times the factor of its unit

constexpr const char* kUnavailableValues = "UnavailableValues";

// No data base takes a NUL in a text.
std::string CellText(const std::string& text) {
    std::string valid = ValidText(text);
    for (size_t at = 0; (at = valid.find('\0', at)) != std::string::npos;) valid.replace(at, 1, "\\x00");
    return valid;
}

TCell TextCell(const std::string& text) {
    TCell cell;
    cell.kind = text.empty() ? TCell::eNull : TCell::eText;
    cell.text = CellText(text);
    return cell;
}

TCell IntegerCell(int64_t integer) {
    TCell cell;
    cell.kind = TCell::eInteger;
    cell.integer = integer;
    return cell;
}

std::string DigitsOf(TInteger number) {
    if (number < 0) return "-" + DigitsOf(-number);
    const std::string last(1, static_cast<char>('0' + static_cast<int>(number % 10)));
    return number < 10 ? last : DigitsOf(number / 10) + last;
}

TCell NumberCell(TInteger number) {
    if (number >= INT64_MIN && number <= INT64_MAX) return IntegerCell(static_cast<int64_t>(number));
    TCell cell;
    cell.kind = TCell::eDigits;
    cell.text = DigitsOf(number);
    return cell;
}

TCell RealCell(double real) {
    TCell cell;
    cell.kind = TCell::eReal;
    cell.real = real;
    return cell;
}

// The double that has the digits of the float: 1.1 and not 1.10000002.
double Widened(float number) {
    if (!std::isfinite(number)) return static_cast<double>(number);
    char digits[64];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    double wide = 0;
    std::from_chars(digits, end, wide);
    return wide;
}

TCell ScaledCell(double number, const TUnit& unit) {
    return RealCell(number * static_cast<double>(unit.factor) / static_cast<double>(unit.divisor));
}

template <typename TNumber>
TCell ScaledCell(TNumber number, const TUnit& unit) {
    if (unit.divisor > 1) return ScaledCell(static_cast<double>(number), unit);
    return NumberCell(TInteger{number} * TInteger{unit.factor});
}

void WriteText(TWriter& json, const std::string& text) {
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

// JSON has no word for what is no number.
void WriteReal(TWriter& json, double real) {
    if (!std::isfinite(real)) return WriteText(json, std::isnan(real) ? "NaN" : real < 0 ? "-Infinity" : "Infinity");
    char digits[64];
    const char* const end = std::to_chars(digits, digits + sizeof digits, real).ptr;
    json.RawValue(digits, static_cast<size_t>(end - digits), rapidjson::kNumberType);
}

void WriteCell(TWriter& json, const TCell& cell) {
    switch (cell.kind) {
        case TCell::eNull:
            return (void)json.Null();
        case TCell::eInteger:
            return (void)json.Int64(cell.integer);
        case TCell::eDigits:
            return (void)json.RawValue(cell.text.data(), cell.text.size(), rapidjson::kNumberType);
        case TCell::eReal:
            return WriteReal(json, cell.real);
        default:
            return WriteText(json, cell.text);
    }
}

TCell JsonCell(const std::vector<TCell>& elements) {
    rapidjson::StringBuffer buffer;
    TWriter json(buffer);
    json.StartArray();
    for (const TCell& element : elements) WriteCell(json, element);
    json.EndArray();
    TCell cell;
    cell.kind = TCell::eText;
    cell.text.assign(buffer.GetString(), buffer.GetSize());
    return cell;
}

bool IsInRange(unsigned value, unsigned first, unsigned last) { return value >= first && value <= last; }

unsigned DaysIn(unsigned month, unsigned year) {
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (month == 2) return isLeap ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// The core takes dates as the 31st of a 13th month. The offset is at most what data bases take.
bool Exists(const TCIMDateTime& moment) {
    return IsInRange(moment.GetYear(), 1, 9999) && IsInRange(moment.GetMonth(), 1, 12) &&
           IsInRange(moment.GetDay(), 1, DaysIn(moment.GetMonth(), moment.GetYear())) && moment.GetHour() < 24 &&
           moment.GetMinute() < 60 && moment.GetSecond() < 60 && std::abs(moment.GetUTCOffset()) < 16 * 60;
}

bool IsLength(const TCIMValue& value) {
    if (value.GetType() != TCIMValue::TCIMType::eCIMDateTime || value.IsNull()) return false;
    const TCIMDateTime moment = value;
    return !moment.IsNull() && moment.IsInterval();
}

int64_t MicrosecondsOf(const TCIMDateTime& moment) {
    tm fields{};
    fields.tm_year = moment.GetYear() - 1900;
    fields.tm_mon = moment.GetMonth() - 1;
    fields.tm_mday = static_cast<int>(moment.GetDay());
    fields.tm_hour = moment.GetHour();
    fields.tm_min = moment.GetMinute() - moment.GetUTCOffset();
    fields.tm_sec = moment.GetSecond();
    return int64_t{timegm(&fields)} * 1000000 + moment.GetMicroSeconds();
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
        std::vector<std::string> known = fOptions.classes;
        const auto isUnknown = [&](const std::string& name) {
            return FindSpokenClass(fContainer, name).classes.empty();
        };
        known.erase(std::remove_if(known.begin(), known.end(), isUnknown), known.end());
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
        return JsonCell(cells);
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
                                [&](const std::string& text) { cell = GivenTextCell(text); },
                                [&](const TCIMDateTime& moment) { cell = ElementOf(moment, value); },
                                [&](const TCIMReference& reference) { cell = ReferenceCell(reference); },
                                [&](const std::vector<TCIMValue>& elements) { cell = ArrayCell(elements, unit); },
                                [&](auto number) { cell = ScaledCell(number, unit); }});
        return cell;
    }

    // An empty text is a value.
    static TCell GivenTextCell(const std::string& text) {
        TCell cell = TextCell(text);
        cell.kind = TCell::eText;
        return cell;
    }

    static TCell ElementOf(const TCIMDateTime& moment, const TCIMValue& value) {
        return moment.IsNull() ? TCell() : TextCell(RawText(value));
    }

    TCell ArrayCell(const std::vector<TCIMValue>& elements, const TUnit& unit) {
        std::vector<TCell> cells;
        for (const TCIMValue& element : elements)
            cells.push_back(element.IsNull() ? TCell() : ValueCell(element, unit));
        return JsonCell(cells);
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

    static std::string WordOf(const TCIMInstance& state, const char* name) {
        const TCIMProperty* const property = state.FindProperty(name);
        return property == nullptr || property->GetValue().IsNull() ? "" : DisplayText(*property);
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

// They have been written in capitals and in small letters.
std::string LowerCase(std::string text) {
    for (char& c : text) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return text;
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
    run.hasTime = true;
}

void SetState(const TCIMInstance& collection, TRun& run) {
    const auto wordOf = [&](const char* name) {
        const TCIMProperty* const property = collection.FindProperty(name);
        return property == nullptr || property->GetValue().IsNull() ? "" : DisplayText(*property);
    };
    run.tool = CellText(TextOf(collection, "Tool"));
    run.toolVersion = CellText(TextOf(collection, "ToolVersion"));
    run.state = wordOf("State");
    run.reason = CellText(TextOf(collection, "Reason"));
    const TCIMProperty* const superuser = collection.FindProperty("Superuser");
    if (superuser == nullptr || superuser->GetType() != TCIMValue::TCIMType::eCIMBoolean) return;
    if (const TCIMValue value = superuser->GetValue(); !value.IsNull()) run.superuser = static_cast<bool>(value);
}

}  // namespace

TRun RunOf(const TContainer& container) {
    TRun run;
    run.hasTime = false;
    run.name = CellText(HostTextOf(container, kHostTexts[0]));
    run.machineId = LowerCase(IdentityText(container, kHostTexts[1]));
    run.uuid = LowerCase(IdentityText(container, kHostTexts[2]));
    run.serial = IdentityText(container, kHostTexts[3]);
    const std::vector<TCIMInstance*> collections = StatesOf(container, kCollectionClass);
    if (collections.empty()) return run;
    SetTime(*collections.front(), run);
    SetState(*collections.front(), run);
    return run;
}

void WriteRows(const TContainer& container, const TRowOptions& options, TClassTables& tables, IRunSink& sink) {
    TRowMaker(container, options, tables, sink).Write();
}
