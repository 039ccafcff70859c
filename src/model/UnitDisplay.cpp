#include "model/UnitDisplay.h"

#include <cctype>
#include <charconv>

#include "model/TCIMDateTimeImpl.h"

namespace {
enum EMagnitude : size_t { ePeta, eTera, eGiga, eMega, eKilo, eOne, eMilli, eMicro, eNano, eMagnitudeEnd };

struct TMagnitude {
    std::string_view word;
    std::string_view shortForm;
};

constexpr TMagnitude kMagnitudes[eMagnitudeEnd] = {
    {"Peta", "P"}, {"Tera", "T"},  {"Giga", "G"},  {"Mega", "M"}, {"Kilo", "K"},
    {"", ""},      {"Milli", "m"}, {"Micro", "u"}, {"Nano", "n"},
};

constexpr TScaledUnit kScaledUnits[] = {
    {"Bytes", 1024, "B"},
    {"Bits", 1024, "Bits"},  // no short form, so "KBits"; see docs/oddities.md
    {"Bytes per Second", 1024, "B/s"},
    {"Bits per Second", 1000, "bps"},
};

// With one decimal, left out if it is 0, and thousands separators: "1.5", "1,536".
std::string GroupedNumber(float number) {
    char digits[32];
    char* const end =
        std::to_chars(digits, digits + sizeof digits, static_cast<double>(number), std::chars_format::fixed, 1).ptr;
    std::string text(digits, end);
    const size_t point = text.size() - 2;
    if (text.back() == '0') text.resize(point);
    for (size_t at = point; at > 3;) text.insert(at -= 3, 1, ',');
    return text;
}

// In lower case except for the first letter: "Megabits per second".
std::string UnitWords(std::string_view magnitude, std::string_view unit) {
    std::string text(magnitude);
    text += unit;
    for (size_t i = 1; i < text.size(); ++i) text[i] = static_cast<char>(tolower(static_cast<unsigned char>(text[i])));
    return text;
}
}  // namespace

TDeclaredUnit ReadUnit(std::string_view units) {
    for (size_t i = 0; i < eMagnitudeEnd; ++i) {
        const std::string_view word = kMagnitudes[i].word;
        if (!word.empty() && units.substr(0, word.size()) == word) return {i, units.substr(word.size())};
    }
    return {eOne, units};
}

const TScaledUnit* FindScaledUnit(std::string_view name) {
    for (const TScaledUnit& unit : kScaledUnits)
        if (unit.name == name) return &unit;
    return nullptr;
}

std::optional<size_t> FindFixedMagnitude(std::string_view word) {
    for (size_t i = eTera; i <= eKilo; ++i)
        if (kMagnitudes[i].word == word) return i;
    return std::nullopt;
}

std::string DisplayTimeSpan(unsigned long count, size_t magnitude, bool isShort) {
    TCIMDateTimeImpl span;
    switch (magnitude) {
        case eOne:
            span = TCIMDateTimeImpl::Interval(count, 0);
            break;
        case eMilli:
            count *= 1000;
            [[fallthrough]];
        case eMicro:
            span = TCIMDateTimeImpl::Interval(count / 1000000, static_cast<unsigned int>(count % 1000000));
            break;
        case eNano:
            span = TCIMDateTimeImpl::Interval(count / 1000000000, static_cast<unsigned int>(count / 1000 % 1000000));
            break;
        default:
            break;  // stays NULL, so that displaying it raises
    }
    return isShort ? span.ToAbbrUIString() : span.ToUIString();
}

std::string DisplayScaled(unsigned long count, size_t magnitude, const TScaledUnit& unit,
                          std::optional<size_t> fixedMagnitude, bool isShort) {
    auto number = static_cast<float>(count);
    const size_t highest = fixedMagnitude.value_or(ePeta);
    while (magnitude > highest && (fixedMagnitude || number > unit.step)) {
        number /= unit.step;
        --magnitude;
    }
    std::string text = GroupedNumber(number);
    text += ' ';
    if (isShort) return text.append(kMagnitudes[magnitude].shortForm).append(unit.shortName);
    return text += UnitWords(kMagnitudes[magnitude].word, unit.name);
}
