#ifndef KYR_HOST_EXPORT_CELLS_H
#define KYR_HOST_EXPORT_CELLS_H

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "export/RunSink.h"

class TCIMDateTime;

/// An integer of 64 bits times the factor of its unit.
__extension__ typedef __int128 TWideInteger;

/// The text as all data bases take it: what is no UTF-8, and a NUL, stands in it as a visible escape.
std::string CellText(const std::string& text);

/// Null for an empty text.
TCell TextCell(const std::string& text);
TCell IntegerCell(int64_t integer);
TCell NumberCell(TWideInteger number);
TCell RealCell(double real);
/// A JSON array of the cells, each of that kind.
TCell JsonCell(const std::vector<TCell>& elements, EColumn kind);

/// The double that has the digits of the float: 1.1 and not 1.10000002.
double Widened(float number);

/// The number in its base unit.
template <typename TNumber>
TCell ScaledCell(TNumber number, const TUnit& unit) {
    if constexpr (std::is_integral_v<TNumber>)
        if (unit.divisor == 1) return NumberCell(TWideInteger{number} * TWideInteger{unit.factor});
    return RealCell(static_cast<double>(number) * static_cast<double>(unit.factor) / static_cast<double>(unit.divisor));
}

/// Whether there is such a date and time, and data bases take it: the core takes the 31st of a 13th month, too.
bool Exists(const TCIMDateTime& moment);
/// Since 1970 in UTC.
int64_t MicrosecondsOf(const TCIMDateTime& moment);

#endif
