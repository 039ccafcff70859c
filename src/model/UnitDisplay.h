#ifndef KYR_MODEL_UNITDISPLAY_H
#define KYR_MODEL_UNITDISPLAY_H

#include <string>
#include <string_view>

/// A unit as a schema declares it, such as "KiloBytes", taken apart. The name refers to the text it was read from.
struct TDeclaredUnit {
    size_t magnitude;  // an index of the table of magnitudes, 0 for Peta
    std::string_view name;
};

/// A unit whose numbers are brought to a fitting magnitude.
struct TScaledUnit {
    std::string_view name;
    float step;  // from one magnitude to the next
    std::string_view shortName;
};

TDeclaredUnit ReadUnit(std::string_view units);
/// Null for a unit whose numbers are shown as they are.
const TScaledUnit* FindScaledUnit(std::string_view name);
/// The magnitude to stop at; 0 for a word that names none.
size_t FixedMagnitude(std::string_view word);

/// "1 minute 30 seconds ", or "00:01:30.000" in short. Raises kyrStatusInvalidDateTime for magnitudes above seconds.
std::string DisplayTimeSpan(unsigned long count, size_t magnitude, bool isShort);
/// "1.5 Kilobytes", or "1.5 KB" in short. A fixed magnitude of 0 fits the magnitude to the number.
std::string DisplayScaled(unsigned long count, size_t magnitude, const TScaledUnit& unit, size_t fixedMagnitude,
                          bool isShort);

#endif
