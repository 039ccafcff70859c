#include "export/PostgresText.h"

#include <charconv>

#include "export/CellText.h"

namespace {

const char* IntegerType(int bits) { return bits <= 16 ? "smallint" : bits <= 32 ? "integer" : "bigint"; }

// The decimal digits of the greatest number of so many bits: 20 for 64.
std::string NumericType(int bits) { return "numeric(" + std::to_string(bits * 30103 / 100000 + 1) + ",0)"; }

// The letter that stands behind a backslash for a byte that COPY would take for something else; 0: it stands for
// itself.
char EscapeOf(char c) {
    switch (c) {
        case '\\':
            return '\\';
        case '\t':
            return 't';
        case '\n':
            return 'n';
        case '\r':
            return 'r';
        default:
            return 0;
    }
}

}  // namespace

std::string PostgresType(const TColumn& column) {
    switch (column.kind) {
        case EColumn::eInteger:
            return IntegerType(column.bits);
        case EColumn::eUnsigned64:
            return NumericType(column.bits);
        case EColumn::eReal:
            return "double precision";
        case EColumn::eBoolean:
            return "boolean";
        case EColumn::eTime:
            return "timestamp with time zone";
        case EColumn::eInterval:
            return "interval";
        case EColumn::eJson:
            return "jsonb";
        case EColumn::eText:
        case EColumn::eReference:
            break;
    }
    return "text";
}

TCopyLine& TCopyLine::Plain(std::string_view text) {
    if (!fIsFirst) fBlock += '\t';
    fIsFirst = false;
    fBlock += text;
    return *this;
}

TCopyLine& TCopyLine::Null() { return Plain("\\N"); }

TCopyLine& TCopyLine::Integer(int64_t number) {
    char digits[24];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return Plain({digits, static_cast<size_t>(end - digits)});
}

TCopyLine& TCopyLine::Text(std::string_view text) {
    Plain("");
    for (const char c : text) {
        const char escape = EscapeOf(c);
        if (escape != 0) fBlock += '\\';
        fBlock += escape != 0 ? escape : c;
    }
    return *this;
}

TCopyLine& TCopyLine::TextOrNull(std::string_view text) { return text.empty() ? Null() : Text(text); }

TCopyLine& TCopyLine::Cell(const TCell& cell, EColumn kind) {
    if (cell.kind == TCell::eNull) return Null();
    return cell.kind == TCell::eText ? Text(cell.text) : Plain(TextOfCell(cell, kind));
}
