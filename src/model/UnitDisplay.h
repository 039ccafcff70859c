#ifndef KYR_MODEL_UNITDISPLAY_H
#define KYR_MODEL_UNITDISPLAY_H

#include <optional>
#include <string>
#include <string_view>

/// The parts of a UNITS qualifier such as "KiloBytes". The name points into the text of the qualifier.
struct TDeclaredUnit {
    size_t magnitude;  // an index of the table of magnitudes
    std::string_view name;
};

/// A unit whose numbers are shown with the magnitude that fits them.
struct TScaledUnit {
    std::string_view name;
    float step;  // from one magnitude to the next
    std::string_view shortName;
};

TDeclaredUnit ReadUnit(std::string_view units);
/// Null for a unit whose numbers are shown as declared.
const TScaledUnit* FindScaledUnit(std::string_view name);
/// The magnitude that DISPLAYFIXEDUNITS names.
std::optional<size_t> FindFixedMagnitude(std::string_view word);

/// "1 minute 30 seconds ", or "00:01:30.000" in short. Raises kyrStatusInvalidDateTime for magnitudes above seconds.
std::string DisplayTimeSpan(unsigned long count, size_t magnitude, bool isShort);
/// "1.5 Kilobytes", or "1.5 KB" in short. Without a fixed magnitude, the one that fits the number.
std::string DisplayScaled(unsigned long count, size_t magnitude, const TScaledUnit& unit,
                          std::optional<size_t> fixedMagnitude, bool isShort);

#endif
