#include "export/SqliteTables.h"

#include <algorithm>
#include <cmath>

#include "base/Output.h"
#include "base/Text.h"
#include "export/CellText.h"

namespace {

// By EColumn. In a column of type ANY a number beyond 64 bits is a text, which SQLite compares as greater than all
// numbers.
constexpr const char* kTypes[] = {"INTEGER", "ANY", "REAL", "TEXT", "INTEGER", "TEXT", "TEXT", "TEXT", "INTEGER"};

const char* TypeOf(EColumn kind) { return kTypes[static_cast<size_t>(kind)]; }

constexpr int kFirstParameter = 4;  // behind run_id, host_id and id

const TColumn& RowIdColumn() {
    static const TColumn column = [] {
        TColumn id;
        id.name = "id";
        id.kind = EColumn::eInteger;
        id.description = "The number of the row among all of its run.";
        return id;
    }();
    return column;
}

}  // namespace

TSqliteTables::TSqliteTables(const TSqliteFile& file)
    : fFile(file),
      fInsertMissing(file, "INSERT INTO missing VALUES (?, ?, ?, ?, ?, ?)"),
      fInsertInfo(file, "INSERT OR IGNORE INTO column_info VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)") {
    TSqliteStatement tables(file, "SELECT DISTINCT table_name, coalesce(class, '') FROM column_info");
    while (tables.Step()) Load(tables.Text(0), tables.Text(1));
    for (const TTable* own : {&ClassStateTable(), &ChangeTable()}) Ensure(*own);
}

TSqliteTables::TStored& TSqliteTables::Load(const std::string& name, const std::string& className) {
    TStored& stored = fStored[name];
    stored.className = className;
    TSqliteStatement columns(fFile, "SELECT name, type FROM pragma_table_info(?)");
    columns.Bind(1, name);
    while (columns.Step()) stored.types.emplace(columns.Text(0), columns.Text(1));
    return stored;
}

TSqliteTables::TTarget& TSqliteTables::TargetOf(const TTable& table) {
    const auto found = fTargets.find(&table);
    return found != fTargets.end() ? found->second : fTargets.emplace(&table, MakeTarget(table)).first->second;
}

TSqliteTables::TTarget TSqliteTables::MakeTarget(const TTable& table) {
    TTarget target;
    target.name = NameFor(table);
    target.hasRowIds = !table.className.empty();
    TStored& stored = fStored[target.name];
    if (stored.types.empty()) Create(target.name, table, stored);
    for (size_t i = 0; i < table.columns.size(); ++i) {
        const bool isReference = table.columns[i].kind == EColumn::eReference;
        target.places.push_back(PlaceFor(table, target.name, stored, i, isReference ? TPlace::eRow : TPlace::eCell));
        if (isReference) target.places.push_back(PlaceFor(table, target.name, stored, i, TPlace::ePath));
    }
    Prepare(target);
    return target;
}

// Which class a table is of, the data base remembers: that of another class gets another name.
std::string TSqliteTables::NameFor(const TTable& table) const {
    const auto ofClass = std::find_if(fStored.begin(), fStored.end(), [&](const auto& stored) {
        return !table.className.empty() && stored.second.className == table.className;
    });
    if (ofClass != fStored.end()) return ofClass->first;
    if (table.className.empty() || fStored.count(table.name) == 0) return table.name;
    std::string name = table.nameWithPrefix;
    while (fStored.count(name) != 0) name += '_';
    return name;
}

void TSqliteTables::Create(const std::string& name, const TTable& table, TStored& stored) {
    const bool isOfClass = !table.className.empty();
    stored.className = table.className;
    stored.types = {{"run_id", "INTEGER"}, {"host_id", "INTEGER"}};
    if (isOfClass) stored.types.emplace("id", "INTEGER");
    const std::string head = "CREATE TABLE " + QuotedName(name) + " (run_id INTEGER NOT NULL, host_id INTEGER NOT NULL";
    fFile.Execute(head +
                  (isOfClass ? ", id INTEGER NOT NULL, PRIMARY KEY (run_id, id)) STRICT, WITHOUT ROWID" : ") STRICT"));
    if (!isOfClass)
        fFile.Execute("CREATE INDEX " + QuotedName(name + "_run") + " ON " + QuotedName(name) + " (run_id)");
    Describe(name, "id", table, RowIdColumn());
}

TSqliteTables::TPlace TSqliteTables::PlaceFor(const TTable& table, const std::string& name, TStored& stored,
                                              size_t cell, TPlace::EWhat what) {
    const TColumn& column = table.columns[cell];
    const EColumn kind = what == TPlace::ePath ? EColumn::eText : column.kind;
    const std::string type = TypeOf(kind);
    std::string place = column.name;
    if (what != TPlace::eCell) place += what == TPlace::eRow ? kIdSuffix : kPathSuffix;
    const auto fits = [&](const std::string& each) {
        const auto found = stored.types.find(each);
        return found == stored.types.end() || found->second == type;
    };
    if (!fits(place)) place = ShortName(place + TypeSuffix(kind));
    while (!fits(place)) place += '_';
    const bool isThere = stored.types.count(place) != 0;
    if (!isThere && !AddColumn(name, place, type, stored)) return {cell, what, 0, place};
    if (!isThere) Describe(name, place, table, column);
    return {cell, what, kFirstParameter, place};
}

// False if the table is full.
bool TSqliteTables::AddColumn(const std::string& table, const std::string& name, const std::string& type,
                              TStored& stored) {
    if (stored.types.size() >= fFile.MostColumns()) {
        PrintDiagnostic("the table " + VisibleText(table) + " cannot have more columns; " + VisibleText(name) +
                        " is left out");
        return false;
    }
    fFile.Execute("ALTER TABLE " + QuotedName(table) + " ADD COLUMN " + QuotedName(name) + " " + type);
    stored.types.emplace(name, type);
    return true;
}

void TSqliteTables::Describe(const std::string& table, const std::string& name, const TTable& of,
                             const TColumn& column) {
    fInsertInfo.Bind(1, table);
    fInsertInfo.Bind(2, name);
    int parameter = 3;
    for (const std::string* text : {&of.className, &column.property, &column.cimType, &column.unit,
                                    &column.declaredUnit, &column.description, &column.nullMeaning})
        fInsertInfo.BindIfAny(parameter++, *text);
    fInsertInfo.Bind(parameter, int64_t{column.isVolatile});
    fInsertInfo.Run();
}

void TSqliteTables::Prepare(TTarget& target) const {
    std::string names = target.hasRowIds ? "run_id, host_id, id" : "run_id, host_id";
    std::string values = target.hasRowIds ? "?1, ?2, ?3" : "?1, ?2";
    int parameter = kFirstParameter;
    for (TPlace& place : target.places) {
        if (place.parameter == 0) continue;
        place.parameter = parameter++;
        names += ", " + QuotedName(place.name);
        values += ", ?" + std::to_string(place.parameter);
    }
    const std::string sql = "INSERT INTO " + QuotedName(target.name) + " (" + names + ") VALUES (" + values + ")";
    target.insert = std::make_unique<TSqliteStatement>(fFile, sql);
}

void TSqliteTables::Insert(const TTable& table, const TRow& row, const TOwner& owner) {
    TTarget& target = TargetOf(table);
    target.insert->Bind(1, owner.run);
    target.insert->Bind(2, owner.host);
    if (target.hasRowIds) target.insert->Bind(3, row.id);
    for (const TPlace& place : target.places) {
        const TCell& cell = row.cells[place.cell];
        const std::string fault =
            place.parameter == 0 && cell.kind != TCell::eNull
                ? "the table has no room for more columns: " + TextOfCell(cell, table.columns[place.cell].kind)
                : BindPlace(*target.insert, place, cell);
        if (!fault.empty()) InsertMissing(target, row, place.cell, fault, "", owner);
    }
    target.insert->Run();
    for (const TMissingValue& missing : row.missing)
        InsertMissing(target, row, missing.column, missing.reason, missing.source, owner);
}

// Returns why the cell cannot be stored; mostly empty.
std::string TSqliteTables::BindPlace(TSqliteStatement& insert, const TPlace& place, const TCell& cell) const {
    if (place.parameter == 0) return "";
    if (place.what == TPlace::ePath) return insert.BindIfAny(place.parameter, cell.text), "";
    if (cell.kind == TCell::eReference && cell.integer == 0) return insert.BindNull(place.parameter), "";
    switch (cell.kind) {
        case TCell::eInteger:
        case TCell::eReference:
            return insert.Bind(place.parameter, cell.integer), "";
        case TCell::eReal:
            insert.Bind(place.parameter, cell.real);
            return std::isnan(cell.real) ? "NaN, which SQLite has not" : "";
        case TCell::eDigits:
        case TCell::eText:
            return insert.Bind(place.parameter, cell.text), "";
        default:
            return insert.BindNull(place.parameter), "";
    }
}

void TSqliteTables::InsertMissing(const TTarget& target, const TRow& row, size_t cell, const std::string& reason,
                                  const std::string& source, const TOwner& owner) {
    const auto place = std::find_if(target.places.begin(), target.places.end(),
                                    [cell](const TPlace& each) { return each.cell == cell; });
    fInsertMissing.Bind(1, owner.run);
    fInsertMissing.Bind(2, target.name);
    fInsertMissing.Bind(3, row.id);
    fInsertMissing.Bind(4, place->name);
    fInsertMissing.Bind(5, reason);
    fInsertMissing.BindIfAny(6, source);
    fInsertMissing.Run();
}

void TSqliteTables::RemoveRun(int64_t run) {
    for (auto& [name, stored] : fStored) {
        if (name == ChangeTable().name) continue;
        if (stored.removeRun == nullptr)
            stored.removeRun =
                std::make_unique<TSqliteStatement>(fFile, "DELETE FROM " + QuotedName(name) + " WHERE run_id = ?");
        stored.removeRun->Bind(1, run);
        stored.removeRun->Run();
    }
}
