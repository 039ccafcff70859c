#include "render/InstanceTable.h"

#include <libsmartcols/libsmartcols.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <sstream>
#include <utility>

#include "base/Csv.h"
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
constexpr const char* kCut = "...";
constexpr size_t kLongestWhole = 45;  // a word that long is not cut: an IPv6 address with the length of its prefix

struct TTable {
    TRow names;
    std::vector<bool> areNumbers;
    std::vector<bool> areTexts;
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

bool IsText(const TCIMClass& cls, const std::string& name) {
    const TCIMPropertyDecl* const declaration = cls.FindPropertyDecl(name);
    return declaration != nullptr && (declaration->GetType() | TCIMValue::TCIMType::eCIMArrayFlag) == kStringArray;
}

void AddRows(const TCIMClass& cls, const TInstanceChoice& choice, bool raw, TTable& table) {
    for (const TCIMInstance* instance : InNaturalOrder(choice.InstancesOf(cls))) {
        TRow row;
        for (const std::string& name : table.names) row.push_back(CellOf(*instance, name, raw));
        table.rows.push_back(std::move(row));
    }
}

TTable TableOf(const std::vector<TCIMClass*>& classes, const TRow& names, const TInstanceChoice& choice, bool raw) {
    TTable table{names, {}, {}, {}};
    for (const TCIMClass* cls : classes) AddRows(*cls, choice, raw, table);
    const auto isAny = [&classes](bool (*is)(const TCIMClass&, const std::string&), const std::string& name) {
        return std::any_of(classes.begin(), classes.end(), [&](const TCIMClass* cls) { return is(*cls, name); });
    };
    for (const std::string& name : names) {
        table.areNumbers.push_back(isAny(IsNumber, name));
        table.areTexts.push_back(isAny(IsText, name));
    }
    return table;
}

void PrintCSV(const TTable& table, TOutput& output) {
    output.Write(CsvLine(table.names));
    for (const TRow& row : table.rows) output.Write(CsvLine(row));
}

size_t LongestWordOf(const std::string& text) {
    std::istringstream words(text);
    size_t longest = 0;
    for (std::string word; words >> word;) longest = std::max(longest, ColumnsOf(word));
    return longest;
}

// To how many columns a text may be cut. What is left of it ends with a whole word.
size_t LeastWidthOf(const std::string& text) {
    return std::min(ColumnsOf(text), std::min(LongestWordOf(text), kLongestWhole) + std::strlen(kCut));
}

std::string CutCell(const std::string& text, size_t width) {
    return ColumnsOf(text) <= width ? text : WrapText(text, width - std::strlen(kCut)).front() + kCut;
}

size_t WidthOf(const TTable& table, size_t column, size_t (*widthOfCell)(const std::string&)) {
    size_t width = table.names[column].size();
    for (const TRow& row : table.rows) width = std::max(width, widthOfCell(row[column]));
    return width;
}

size_t WholeWidthOf(const TTable& table, size_t column) {
    return WidthOf(table, column, [](const std::string& cell) { return ColumnsOf(cell); });
}

// The first column names the instance. Of numbers and the like, what is left would look like another one.
bool MayBeCut(const TTable& table, size_t column) { return column > 0 && table.areTexts[column]; }

// Of as many columns as have room if texts are cut. What is left of the width is given to the first texts.
std::vector<size_t> WidthsIn(const TTable& table, size_t width) {
    std::vector<size_t> widths;
    size_t used = 0;
    for (size_t i = 0; i < table.names.size(); ++i) {
        widths.push_back(MayBeCut(table, i) ? WidthOf(table, i, LeastWidthOf) : WholeWidthOf(table, i));
        const size_t needed = used + widths.back() + (i == 0 ? 0 : std::strlen(kSeparator));
        if (i > 0 && needed > width) {
            widths.pop_back();
            break;
        }
        used = needed;
    }
    for (size_t i = 1; i < widths.size(); ++i) {
        const size_t more = std::min(WholeWidthOf(table, i) - widths[i], width - used);
        widths[i] += more;
        used += more;
    }
    return widths;
}

// Only the first column is ever wider than a line. Then it is the only one.
void WrapFirst(size_t width, std::vector<TRow>& rows) {
    std::vector<TRow> lines;
    for (const TRow& row : rows)
        for (const std::string& line : WrapText(row.front(), width)) lines.push_back({line});
    rows = std::move(lines);
}

// Returns the names of the columns for which there is no room.
TRow FitIn(size_t width, TTable& table) {
    const std::vector<size_t> widths = WidthsIn(table, width);
    for (TRow& row : table.rows) {
        row.resize(widths.size());
        for (size_t i = 1; i < row.size(); ++i) row[i] = CutCell(row[i], widths[i]);
    }
    if (widths.front() > width) WrapFirst(width, table.rows);
    TRow left(table.names.begin() + static_cast<long>(widths.size()), table.names.end());
    table.names.resize(widths.size());
    return left;
}

void AddColumns(const TTable& table, libscols_table& columns) {
    for (size_t i = 0; i < table.names.size(); ++i) {
        const int flags = table.areNumbers[i] ? SCOLS_FL_RIGHT : 0;
        libscols_column* const column = scols_table_new_column(&columns, table.names[i].c_str(), 0, flags);
        // Escapes in visible texts are not to be escaped again.
        if (column == nullptr || scols_column_set_safechars(column, "\\") != 0) throw std::bad_alloc();
    }
}

void AddLine(const TRow& row, libscols_table& columns) {
    libscols_line* const line = scols_table_new_line(&columns, nullptr);
    if (line == nullptr) throw std::bad_alloc();
    for (size_t i = 0; i < row.size(); ++i)
        if (scols_line_set_data(line, i, row[i].empty() ? "-" : row[i].c_str()) != 0) throw std::bad_alloc();
}

void PrintColumns(const TTable& table, TOutput& output) {
    const TUTF8Locale locale;
    const std::unique_ptr<libscols_table, void (*)(libscols_table*)> columns(scols_new_table(), scols_unref_table);
    if (columns == nullptr) throw std::bad_alloc();
    scols_table_set_termforce(columns.get(), SCOLS_TERMFORCE_NEVER);
    scols_table_set_column_separator(columns.get(), kSeparator);
    AddColumns(table, *columns);
    for (const TRow& row : table.rows) AddLine(row, *columns);
    char* printed = nullptr;
    if (scols_print_table_to_string(columns.get(), &printed) != 0) throw std::bad_alloc();
    const std::unique_ptr<char, void (*)(void*)> text(printed, std::free);
    output.Write(std::string(text.get()) + "\n");
}

// What programs read is whole, whatever COLUMNS says.
void PrintAligned(TTable table, TOutput& output) {
    const TRow left = output.IsTerminal() ? FitIn(output.Width(), table) : TRow();
    PrintColumns(table, output);
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

void Print(TTable table, bool csv, TOutput& output) {
    csv ? PrintCSV(table, output) : PrintAligned(std::move(table), output);
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
        TTable table = TableOf({cls}, OwnColumnsOf(*cls, options.stable), choice, options.raw);
        if (cls != classes.front()) output.Write("\n");
        if (classes.size() > 1)
            output.Write(output.Bold(cls->GetName()) + " (" + std::to_string(table.rows.size()) + ")\n");
        Print(std::move(table), options.csv, output);
    }
    return !classes.empty();
}

}  // namespace

bool PrintTable(const TInstanceChoice& choice, const TTableOptions& options, TOutput& output) {
    const std::vector<TCIMClass*> classes = ClassesToPrint(choice, options.columns);
    return options.columns.empty() ? PrintTables(classes, choice, options, output)
                                   : PrintOneTable(classes, choice, options, output);
}
