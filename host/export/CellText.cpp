#include "export/CellText.h"

#include <charconv>
#include <cmath>

namespace {

std::string RealText(double real) {
    if (std::isnan(real)) return "NaN";
    if (std::isinf(real)) return real < 0 ? "-Infinity" : "Infinity";
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, real).ptr};
}

}  // namespace

std::string TextOfCell(const TCell& cell, EColumn kind) {
    switch (cell.kind) {
        case TCell::eNull:
            return "";
        case TCell::eInteger:
            if (kind == EColumn::eBoolean) return cell.integer != 0 ? "true" : "false";
            return std::to_string(cell.integer);
        case TCell::eReal:
            return RealText(cell.real);
        default:
            return cell.text;
    }
}
