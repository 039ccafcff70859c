#include "export/Tables.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <utility>

#include "base/Text.h"

namespace {

// Of SQLite and PostgreSQL, and columns that PostgreSQL gives each table. In order, for the search.
constexpr std::string_view kReserved[] = {"add",
                                          "all",
                                          "alter",
                                          "analyse",
                                          "analyze",
                                          "and",
                                          "any",
                                          "array",
                                          "as",
                                          "asc",
                                          "asymmetric",
                                          "authorization",
                                          "autoincrement",
                                          "between",
                                          "binary",
                                          "both",
                                          "case",
                                          "cast",
                                          "check",
                                          "cmax",
                                          "cmin",
                                          "collate",
                                          "collation",
                                          "column",
                                          "commit",
                                          "concurrently",
                                          "constraint",
                                          "create",
                                          "cross",
                                          "ctid",
                                          "current_catalog",
                                          "current_date",
                                          "current_role",
                                          "current_schema",
                                          "current_time",
                                          "current_timestamp",
                                          "current_user",
                                          "default",
                                          "deferrable",
                                          "delete",
                                          "desc",
                                          "distinct",
                                          "do",
                                          "drop",
                                          "else",
                                          "end",
                                          "escape",
                                          "except",
                                          "exists",
                                          "false",
                                          "fetch",
                                          "for",
                                          "foreign",
                                          "freeze",
                                          "from",
                                          "full",
                                          "grant",
                                          "group",
                                          "having",
                                          "ilike",
                                          "in",
                                          "index",
                                          "initially",
                                          "inner",
                                          "insert",
                                          "intersect",
                                          "into",
                                          "is",
                                          "isnull",
                                          "join",
                                          "lateral",
                                          "leading",
                                          "left",
                                          "like",
                                          "limit",
                                          "localtime",
                                          "localtimestamp",
                                          "natural",
                                          "not",
                                          "nothing",
                                          "notnull",
                                          "null",
                                          "offset",
                                          "oid",
                                          "on",
                                          "only",
                                          "or",
                                          "order",
                                          "outer",
                                          "overlaps",
                                          "placing",
                                          "primary",
                                          "references",
                                          "returning",
                                          "right",
                                          "rowid",
                                          "select",
                                          "session_user",
                                          "set",
                                          "similar",
                                          "some",
                                          "symmetric",
                                          "system_user",
                                          "table",
                                          "tableoid",
                                          "tablesample",
                                          "then",
                                          "to",
                                          "trailing",
                                          "transaction",
                                          "true",
                                          "union",
                                          "unique",
                                          "update",
                                          "use",
                                          "user",
                                          "using",
                                          "values",
                                          "variadic",
                                          "verbose",
                                          "when",
                                          "where",
                                          "window",
                                          "with",
                                          "xmax",
                                          "xmin"};

// Capitals that are one word with what follows or stands before them.
struct TSpelling {
    std::string_view name;
    std::string_view word;
};
constexpr TSpelling kSpellings[] = {
    {"IPv4", "Ipv4"}, {"IPv6", "Ipv6"}, {"NVMe", "Nvme"}, {"PCIe", "Pcie"}, {"VLANID", "VlanId"}};

std::string WithWords(std::string name) {
    for (const TSpelling& spelling : kSpellings)
        if (const size_t at = name.find(spelling.name); at != std::string::npos)
            name.replace(at, spelling.name.size(), spelling.word);
    return name;
}

bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool IsLower(char c) { return c >= 'a' && c <= 'z'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsWordByte(char c) { return IsUpper(c) || IsLower(c) || IsDigit(c) || static_cast<unsigned char>(c) >= 0x80; }

bool StartsWord(const std::string& name, size_t at) {
    if (at == 0 || !IsUpper(name[at])) return false;
    const char before = name[at - 1];
    return IsLower(before) || IsDigit(before) || (IsUpper(before) && at + 1 < name.size() && IsLower(name[at + 1]));
}

// FNV-1a
uint32_t HashOf(const std::string& text) {
    uint32_t hash = 2166136261u;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash;
}

struct TBase {
    std::string_view declared;  // without Kilo, Mega and the like
    std::string_view base;
    uint64_t step;  // of Kilo and the like; 0: there is none
};

// The steps are those by which values are displayed.
constexpr TBase kBases[] = {{"Bytes", "bytes", 1024},
                            {"Octets", "bytes", 1024},
                            {"Bits", "bits", 1024},
                            {"Bytes per Second", "bytes per second", 1024},
                            {"Bits per Second", "bits per second", 1000},
                            {"Transfers per Second", "transfers per second", 1000},
                            {"Hertz", "hertz", 1000},
                            {"Seconds", "seconds", 1000},
                            {"Volts", "volts", 1000},
                            {"Amps", "amps", 1000},
                            {"Amperes", "amps", 1000},
                            {"Watts", "watts", 1000},
                            {"Meters", "meters", 1000},
                            {"WattHours", "watt hours", 1000},
                            {"AmpereHours", "ampere hours", 1000},
                            {"Degrees C", "degrees c", 0},
                            {"Revolutions per Minute", "rpm", 0},
                            {"Percent", "percent", 0},
                            {"Hours", "hours", 0},
                            {"Minutes", "minutes", 0},
                            {"Inches", "inches", 0},
                            {"Pixels", "pixels", 0},
                            {"Rack Units", "rack units", 0},
                            {"Sectors", "", 0},
                            {"Packets", "", 0},
                            {"Files", "", 0},
                            {"Pages", "", 0},
                            {"Cores", "", 0},
                            {"Threads", "", 0},
                            {"Slots", "", 0},
                            {"Modules", "", 0},
                            {"Ranks", "", 0},
                            {"Ways", "", 0},
                            {"Lanes", "", 0},
                            {"Ports", "", 0},
                            {"Devices", "", 0},
                            {"Cycles", "", 0},
                            {"Uses", "", 0},
                            {"Blocks", "", 0},
                            {"Commands", "", 0},
                            {"Components", "", 0},
                            {"Connections", "", 0},
                            {"Cords", "", 0},
                            {"Entries", "", 0},
                            {"Events", "", 0},
                            {"Functions", "", 0},
                            {"Packages", "", 0},
                            {"Processes", "", 0},
                            {"Processors", "", 0},
                            {"Profiles", "", 0},
                            {"Queues", "", 0},
                            {"Sockets", "", 0},
                            {"Instances", "", 0},
                            {"Identifier", "", 0}};

struct TMagnitude {
    std::string_view word;
    int steps;
};
constexpr TMagnitude kMagnitudes[] = {{"Peta", 5}, {"Tera", 4},   {"Giga", 3},   {"Mega", 2},
                                      {"Kilo", 1}, {"Milli", -1}, {"Micro", -2}, {"Nano", -3}};

const TBase* FindBase(std::string_view declared) {
    const auto found = std::find_if(std::begin(kBases), std::end(kBases),
                                    [&](const TBase& base) { return base.declared == declared; });
    return found == std::end(kBases) ? nullptr : found;
}

uint64_t Power(uint64_t base, int exponent) { return exponent <= 0 ? 1 : base * Power(base, exponent - 1); }

// With a unit that has no such steps, or none that is known, it stays as it is.
TUnit Scaled(const std::string& declared, const TMagnitude& magnitude) {
    const TBase* const base = FindBase(std::string_view(declared).substr(magnitude.word.size()));
    if (base == nullptr || base->step == 0) return {declared};
    return {std::string(base->base), Power(base->step, magnitude.steps), Power(base->step, -magnitude.steps)};
}

TColumn OwnColumn(const char* name, EColumn kind, const char* description) {
    TColumn column;
    column.name = name;
    column.kind = kind;
    column.bits = kind == EColumn::eInteger ? 64 : 0;
    column.description = description;
    return column;
}

// By EColumn.
constexpr const char* kTypeSuffixes[] = {"_integer", "_uint64",   "_real", "_text",     "_boolean",
                                         "_time",    "_interval", "_json", "_reference"};

}  // namespace

const char* TypeSuffix(EColumn kind) { return kTypeSuffixes[static_cast<size_t>(kind)]; }

std::string SqlWords(const std::string& cimName) {
    const std::string name = WithWords(cimName);
    std::string words;
    for (size_t i = 0; i < name.size(); ++i) {
        if (StartsWord(name, i)) words += '_';
        words += IsWordByte(name[i]) ? name[i] : '_';
    }
    if (words.empty() || IsDigit(words.front())) words.insert(words.begin(), '_');
    return LowerCase(std::move(words));
}

std::string Unreserved(const std::string& name) {
    return std::binary_search(std::begin(kReserved), std::end(kReserved), name) ? name + '_' : name;
}

std::string SqlName(const std::string& cimName) { return Unreserved(SqlWords(cimName)); }

std::string ShortName(const std::string& name, size_t most) {
    if (name.size() <= most) return name;
    char hash[16];
    std::snprintf(hash, sizeof hash, "_%08x", HashOf(name));
    size_t end = most - std::string_view(hash).size();
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;  // inside a character
    return name.substr(0, end) + hash;
}

TUnit BaseUnitOf(const std::string& declared) {
    if (const TBase* const base = FindBase(declared)) return {std::string(base->base)};
    for (const TMagnitude& magnitude : kMagnitudes)
        if (StartsWith(declared, magnitude.word)) return Scaled(declared, magnitude);
    return {declared};
}

const TTable& ClassStateTable() {
    static const TTable table{
        "class_state",
        "class_state",
        "",
        false,
        {OwnColumn("class", EColumn::eText, "The class."),
         OwnColumn("plugin", EColumn::eText, "The plugin that reports it."),
         OwnColumn("state", EColumn::eText, "How completely it was collected."),
         OwnColumn("reason_code", EColumn::eText, "The word for the reason why it is not complete."),
         OwnColumn("reason", EColumn::eText, "The reason in a sentence."),
         OwnColumn("instances", EColumn::eInteger, "How many instances the collection holds.")}};
    return table;
}

const TTable& ChangeTable() {
    static const TTable table{
        "change",
        "change",
        "",
        false,
        {OwnColumn("changed_at", EColumn::eTime, "The time of the later run."),
         OwnColumn("previous_at", EColumn::eTime, "The time of the run before it."),
         OwnColumn("class", EColumn::eText, "The class."),
         OwnColumn("path", EColumn::eText, "The object path, in the later run if it is there."),
         OwnColumn("op", EColumn::eText, "added, removed, moved, changed, unreadable or not compared."),
         OwnColumn("property", EColumn::eText, "The property; without one, the row is of the thing itself."),
         OwnColumn("old", EColumn::eText, "The former value as it is displayed; of a thing, its name."),
         OwnColumn("new", EColumn::eText, "The value now.")}};
    return table;
}
