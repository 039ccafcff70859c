#include "render/InstanceTable.h"

#include <libsmartcols/libsmartcols.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "base/ExitStatus.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/ClassNames.h"
#include "model/InstanceChoice.h"
#include "model/Qualifiers.h"
#include "model/ReadingOrder.h"
#include "model/Values.h"

namespace {

using TRow = std::vector<std::string>;

constexpr const char* kSeparator = "  ";

struct TTable {
    TRow names;
    std::vector<bool> areNumbers;
    std::vector<TRow> rows;
};

/// Lets the C library take texts as UTF-8 while it exists, whatever the user's locale: kyr prints nothing else.
class TUTF8Locale {
public:
    TUTF8Locale() : fLocale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (fLocale != nullptr) fBefore = uselocale(fLocale);
    }
    ~TUTF8Locale() {
        if (fLocale == nullptr) return;
        uselocale(fBefore);
        freelocale(fLocale);
    }
    TUTF8Locale(const TUTF8Locale&) = delete;
    TUTF8Locale& operator=(const TUTF8Locale&) = delete;

private:
    const locale_t fLocale;
    locale_t fBefore = nullptr;
};

std::string CellOf(const TCIMInstance& instance, const std::string& name, bool raw) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? "" : ValueText(*property, raw);
}

bool IsNumber(const TCIMClass& cls, const std::string& name) {
    const TCIMPropertyDecl* const declaration = cls.FindPropertyDecl(name);
    return declaration != nullptr && IsCounted(*declaration);
}

void AddRows(const TCIMClass& cls, const TInstanceChoice& choice, bool raw, TTable& table) {
    for (const TCIMInstance* instance : InNaturalOrder(choice.InstancesOf(cls))) {
        TRow row;
        for (const std::string& name : table.names) row.push_back(CellOf(*instance, name, raw));
        table.rows.push_back(std::move(row));
    }
}

TTable TableOf(const std::vector<TCIMClass*>& classes, const TRow& names, const TInstanceChoice& choice, bool raw) {
    TTable table{names, {}, {}};
    for (const TCIMClass* cls : classes) AddRows(*cls, choice, raw, table);
    for (const std::string& name : names)
        table.areNumbers.push_back(
            std::any_of(classes.begin(), classes.end(), [&](const TCIMClass* cls) { return IsNumber(*cls, name); }));
    return table;
}

std::string CSVField(const std::string& text) {
    if (text.find_first_of(",\"") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

void PrintCSVLine(const TRow& row, TOutput& output) {
    std::vector<std::string> fields;
    for (const std::string& text : row) fields.push_back(CSVField(text));
    output.Write(Join(fields, ",") + "\r\n");
}

void PrintCSV(const TTable& table, TOutput& output) {
    PrintCSVLine(table.names, output);
    for (const TRow& row : table.rows) PrintCSVLine(row, output);
}

// Of the first column, which names the instance. It is cut only if it would take more than half of a line.
size_t WidthOfFirst(const TTable& table, size_t width) {
    size_t widest = table.names.front().size();
    for (const TRow& row : table.rows) widest = std::max(widest, ColumnsOf(row.front()));
    return widest > width / 2 ? table.names.front().size() : widest;
}

// How many columns have room, if all but the first are cut to their names: the library cuts them no further.
size_t CountFitting(const TTable& table, size_t width) {
    size_t used = WidthOfFirst(table, width), count = 1;
    for (; count < table.names.size(); ++count) {
        used += std::strlen(kSeparator) + table.names[count].size();
        if (used > width) break;
    }
    return count;
}

void AddColumns(const TTable& table, size_t count, size_t width, libscols_table& columns) {
    for (size_t i = 0; i < count; ++i) {
        const bool isWhole = i == 0 && WidthOfFirst(table, width) > table.names.front().size();
        const int flags = (isWhole ? 0 : SCOLS_FL_TRUNC) | (table.areNumbers[i] ? SCOLS_FL_RIGHT : 0);
        libscols_column* const column = scols_table_new_column(&columns, table.names[i].c_str(), 0, flags);
        // Escapes in visible texts are not to be escaped again.
        if (column == nullptr || scols_column_set_safechars(column, "\\") != 0) throw std::bad_alloc();
    }
}

void AddLine(const TRow& row, size_t count, libscols_table& columns) {
    libscols_line* const line = scols_table_new_line(&columns, nullptr);
    if (line == nullptr) throw std::bad_alloc();
    for (size_t i = 0; i < count; ++i)
        if (scols_line_set_data(line, i, row[i].empty() ? "-" : row[i].c_str()) != 0) throw std::bad_alloc();
}

void PrintAligned(const TTable& table, TOutput& output) {
    const TUTF8Locale locale;
    const std::unique_ptr<libscols_table, void (*)(libscols_table*)> columns(scols_new_table(), scols_unref_table);
    if (columns == nullptr) throw std::bad_alloc();
    const bool isLimited = output.Width() < TOutput::kUnlimited;
    scols_table_set_termforce(columns.get(), isLimited ? SCOLS_TERMFORCE_ALWAYS : SCOLS_TERMFORCE_NEVER);
    if (isLimited) scols_table_set_termwidth(columns.get(), output.Width());
    scols_table_set_column_separator(columns.get(), kSeparator);
    const size_t count = CountFitting(table, output.Width());
    AddColumns(table, count, output.Width(), *columns);
    for (const TRow& row : table.rows) AddLine(row, count, *columns);
    char* printed = nullptr;
    if (scols_print_table_to_string(columns.get(), &printed) != 0) throw std::bad_alloc();
    const std::unique_ptr<char, void (*)(void*)> text(printed, std::free);
    output.Write(std::string(text.get()) + "\n");
    const TRow left(table.names.begin() + static_cast<long>(count), table.names.end());
    if (!left.empty()) output.WriteWrapped("no room for " + Join(left), "");
}

TRow OwnColumnsOf(const TCIMClass& cls, bool stable) {
    TRow names = MainPropertiesOf(cls);
    if (names.empty()) names = cls.EnumerateKeyNames();
    const auto isOut = [&](const std::string& name) {
        return IsScopeKey(name) || (stable && IsVolatile(*cls.FindPropertyDecl(name)));
    };
    names.erase(std::remove_if(names.begin(), names.end(), isOut), names.end());
    return names.empty() ? cls.EnumerateKeyNames() : names;
}

bool HasAll(const TCIMClass& cls, const TRow& names) {
    return std::all_of(names.begin(), names.end(),
                       [&cls](const std::string& name) { return FindPropertyNamed(cls, name) != nullptr; });
}

// Of all instances, what PrintInstances would only count is left out here, too.
std::vector<TCIMClass*> ClassesToPrint(const TInstanceChoice& choice, const TRow& columns) {
    std::vector<TCIMClass*> classes = choice.Classes();
    const auto isOut = [&](const TCIMClass* cls) {
        return cls->IsAssociation() || FindNameOfMany(*cls) != nullptr || !HasAll(*cls, columns);
    };
    if (choice.IsAll()) classes.erase(std::remove_if(classes.begin(), classes.end(), isOut), classes.end());
    SortForReading(classes);
    return classes;
}

void DropEmpty(std::vector<TCIMClass*>& classes, const TInstanceChoice& choice) {
    classes.erase(std::remove_if(classes.begin(), classes.end(),
                                 [&](const TCIMClass* cls) { return choice.InstancesOf(*cls).empty(); }),
                  classes.end());
}

void Print(const TTable& table, bool csv, TOutput& output) {
    csv ? PrintCSV(table, output) : PrintAligned(table, output);
}

bool PrintOneTable(std::vector<TCIMClass*> classes, const TInstanceChoice& choice, const TTableOptions& options,
                   TOutput& output) {
    TRow names;
    for (const std::string& column : options.columns)
        names.push_back(GetPropertyNamed(choice.IsAll() ? choice.Classes() : classes, column));
    if (classes.empty()) throw TCommandError(eExitUsage, "no class has all of the columns " + Join(names));
    DropEmpty(classes, choice);
    if (classes.empty() && !options.csv) return false;
    Print(TableOf(classes, names, choice, options.raw), options.csv, output);
    return !classes.empty();
}

void RefuseUnlikeColumns(const std::vector<TCIMClass*>& classes) {
    throw TCommandError(eExitUsage, "the classes " + Join(NamesOf(classes)) +
                                        " have columns of their own: say by --columns which are wanted");
}

bool PrintTables(std::vector<TCIMClass*> classes, const TInstanceChoice& choice, const TTableOptions& options,
                 TOutput& output) {
    DropEmpty(classes, choice);
    if (options.csv && classes.size() > 1) RefuseUnlikeColumns(classes);
    for (TCIMClass* cls : classes) {
        const TTable table = TableOf({cls}, OwnColumnsOf(*cls, options.stable), choice, options.raw);
        if (cls != classes.front()) output.Write("\n");
        if (classes.size() > 1)
            output.Write(output.Bold(cls->GetName()) + " (" + std::to_string(table.rows.size()) + ")\n");
        Print(table, options.csv, output);
    }
    return !classes.empty();
}

}  // namespace

bool PrintTable(const TInstanceChoice& choice, const TTableOptions& options, TOutput& output) {
    const std::vector<TCIMClass*> classes = ClassesToPrint(choice, options.columns);
    return options.columns.empty() ? PrintTables(classes, choice, options, output)
                                   : PrintOneTable(classes, choice, options, output);
}
