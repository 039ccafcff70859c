#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

#include "base/Text.h"
#include "check/DocumentRules.h"
#include "check/Units.h"
#include "model/Needs.h"
#include "model/Provenance.h"

namespace {

using TWords = std::vector<std::string>;

constexpr uint64_t kOpen = UINT64_MAX;

/// The numbers that an entry of ValueMap stands for.
struct TRange {
    uint64_t low;
    uint64_t high;
};

// The largest number of an unsigned type, or of a boolean.
uint64_t HighestOf(const std::string& type) {
    if (type == "boolean") return 1;
    return type == "uint8" ? UINT8_MAX : type == "uint16" ? UINT16_MAX : type == "uint32" ? UINT32_MAX : UINT64_MAX;
}

/// An entry of ValueMap as its author means it: "N", "N..", "N..M", "..M" or "..".
struct TEntry {
    enum EForm { eNumber, eFrom, eBetween, eUpTo, eRest, eText };
    EForm form = eText;
    std::string low = {};
    std::string high = {};
};

TEntry ReadEntry(const std::string& text) {
    const std::string entry = Trimmed(text);
    const size_t dots = entry.find("..");
    if (dots == std::string::npos) return {TEntry::eNumber, entry, entry};
    const std::string low = Trimmed(entry.substr(0, dots)), high = Trimmed(entry.substr(dots + 2));
    if (low.empty()) return {high.empty() ? TEntry::eRest : TEntry::eUpTo, "", high};
    return {high.empty() ? TEntry::eFrom : TEntry::eBetween, low, high};
}

uint64_t NumberOf(const std::string& text) { return std::strtoull(text.c_str(), nullptr, 0); }

/// What the entries stand for, in their order; nothing for "..", which stands for all others.
using TRanges = std::vector<std::optional<TRange>>;

// As their author means them. An entry "N.." ends in front of the next number.
TRanges RangesMeant(const std::vector<TEntry>& entries, uint64_t highest) {
    TRanges ranges;
    uint64_t next = 0;
    for (const TEntry& entry : entries) {
        if (entry.form == TEntry::eRest) {
            ranges.emplace_back();
            continue;
        }
        const uint64_t low = entry.form == TEntry::eUpTo ? next : NumberOf(entry.low);
        if (!ranges.empty() && ranges.back() && ranges.back()->high == kOpen && low > 0) ranges.back()->high = low - 1;
        const uint64_t high = entry.form == TEntry::eFrom ? kOpen : NumberOf(entry.high);
        ranges.push_back(TRange{low, high});
        next = high == kOpen ? low + 1 : high + 1;
    }
    if (!ranges.empty() && ranges.back() && ranges.back()->high == kOpen) ranges.back()->high = highest;
    return ranges;
}

// As the core reads them; see docs/oddities.md. Nothing at all if it refuses them.
std::optional<TRanges> RangesRead(const std::vector<TEntry>& entries, uint64_t highest) {
    TRanges ranges;
    TRange* last = nullptr;  // of the entries that are ranges
    uint64_t next = 0;
    bool isOpen = false;
    ranges.reserve(entries.size());
    for (const TEntry& entry : entries) {
        const bool isBehindOpen = last != nullptr && last->high == kOpen;
        if (entry.form == TEntry::eRest || entry.form == TEntry::eUpTo) {
            if (isBehindOpen) return {};
            if (entry.form == TEntry::eRest)
                ranges.emplace_back();
            else
                last = &*ranges.emplace_back(TRange{next, NumberOf(entry.high)});
            if (entry.form == TEntry::eUpTo) next = last->high + 1;
            continue;
        }
        const uint64_t low = NumberOf(entry.low);
        if (isBehindOpen) last->high = low - 1;
        isOpen |= entry.form != TEntry::eNumber;
        last = &*ranges.emplace_back(TRange{low, isOpen ? kOpen : low});
        next = low + 1;
    }
    if (last != nullptr && last->high == kOpen) last->high = highest;
    return ranges;
}

// The entry for which RangesRead refuses them.
size_t FindRefused(const std::vector<TEntry>& entries) {
    const auto isOpen = [](const TEntry& entry) {
        return entry.form == TEntry::eFrom || entry.form == TEntry::eBetween;
    };
    const auto isRefused = [](const TEntry& entry) {
        return entry.form == TEntry::eRest || entry.form == TEntry::eUpTo;
    };
    const auto open = std::find_if(entries.begin(), entries.end(), isOpen);
    return static_cast<size_t>(std::find_if(open, entries.end(), isRefused) - entries.begin());
}

bool IsSame(const std::optional<TRange>& a, const std::optional<TRange>& b) {
    if (!a || !b) return !a && !b;
    return a->low == b->low && a->high == b->high;
}

// Whether only what is above all entries gets the word too.
bool IsOpenEnd(const TRanges& meant, const TRanges& read, size_t i, uint64_t highest) {
    return meant[i] && read[i] && meant[i]->low == read[i]->low && meant[i]->low < meant[i]->high &&
           read[i]->high == highest;
}

std::string RangeText(const TRange& range) {
    const std::string low = std::to_string(range.low);
    return range.low == range.high ? low : low + " to " + std::to_string(range.high);
}

// The words of a name: "FreeSpaceMB" is free, space, mb.
TWords WordsOf(const std::string& name) {
    TWords words;
    for (size_t i = 0; i < name.size(); ++i) {
        const auto isUpper = [&name](size_t at) { return std::isupper(static_cast<unsigned char>(name[at])) != 0; };
        const bool starts =
            i == 0 || name[i] == '_' ||
            (isUpper(i) &&
             (!isUpper(i - 1) || (i + 1 < name.size() && std::islower(static_cast<unsigned char>(name[i + 1])) != 0)));
        if (starts) words.emplace_back();
        if (name[i] != '_') words.back() += LowerName(std::string(1, name[i]));
    }
    return words;
}

bool Contains(const TWords& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

class TValueCheck {
public:
    TValueCheck(const TMarkup& markup, const TKnownSchema& known, TFindings& findings)
        : fMarkup(markup), fFindings(findings), fKnowsVolatile(known.FindQualifier("Volatile") != nullptr) {}

    void Check(const TClassDeclaration& cls) {
        if (const TQualifierUse* const needs = cls.Find("NEEDS"); needs != nullptr && needs->isArray)
            for (const std::string& need : needs->values)
                if (NeedFor(need) == 0)
                    Add("V16", *needs->element, cls.name + " needs " + Quoted(need) + ", which kyr does not know",
                        "the words are " + Join(NeedWords()));
        for (const TPropertyDeclaration& property : cls.properties) {
            if (property.isPropagated || property.name.empty()) continue;
            fName = cls.name + "." + property.name;
            CheckProperty(property);
        }
    }

private:
    void Add(const char* rule, const TElement& element, const std::string& text, const std::string& remedy) {
        if (!fFindings.CountsOnly(rule, fMarkup.file)) fFindings.Add(rule, fMarkup.PlaceOf(element), text, remedy);
    }

    void CheckProperty(const TPropertyDeclaration& property) {
        CheckWords(property);
        CheckUnit(property);
        CheckDisplay(property);
        CheckVolatile(property);
        CheckIsNoDate(property);
        CheckNullMeans(property);
    }

    // Words

    void CheckWords(const TPropertyDeclaration& property) {
        const TQualifierUse* const words = property.Find("Values");
        const TQualifierUse* const map = property.Find("ValueMap");
        if (words != nullptr) CheckEachWord(property, *words);
        if (map == nullptr || map->values.empty()) return;
        if (words != nullptr && !words->values.empty() && words->values.size() != map->values.size())
            Add("V01", *map->element,
                fName + " has " + std::to_string(map->values.size()) + " entries in ValueMap and " +
                    std::to_string(words->values.size()) + " in Values",
                "give each entry its word: then words are shown");
        CheckRepeats(*map);
        if (property.IsUnsigned() || property.type == "boolean")
            CheckEntries(property, *map);
        else if (property.type.compare(0, 4, "sint") == 0)
            ReadEntries(property, *map);
    }

    void CheckEachWord(const TPropertyDeclaration& property, const TQualifierUse& words) {
        if (property.IsNumber() && !property.IsUnsigned())
            Add("V05", *words.element, "the words of " + fName + " are never shown: it is " + property.type,
                "use an unsigned type if no value is below 0");
        size_t place = 0;
        for (const std::string& word : words.values) {
            ++place;
            if (Trimmed(word).empty())
                Add("V06", *words.element, "word " + std::to_string(place) + " of " + fName + " is empty",
                    "give it a word, or remove it with its entry in ValueMap");
        }
    }

    void CheckRepeats(const TQualifierUse& map) {
        TWords entries;
        for (const std::string& entry : map.values) entries.push_back(Trimmed(entry));
        std::sort(entries.begin(), entries.end());
        for (auto at = std::adjacent_find(entries.begin(), entries.end()); at != entries.end();
             at = std::adjacent_find(std::upper_bound(at, entries.end(), *at), entries.end()))
            Add("V02", *map.element, "ValueMap of " + fName + " has " + Quoted(*at) + " more than once",
                "keep one of them");
    }

    // The entries, if all of them can be read.
    std::optional<std::vector<TEntry>> ReadEntries(const TPropertyDeclaration& property, const TQualifierUse& map) {
        std::vector<TEntry> entries;
        bool isGood = true;
        for (const std::string& text : map.values) {
            entries.push_back(ReadEntry(text));
            for (const std::string& number : {entries.back().low, entries.back().high}) {
                const std::string fault = number.empty() ? "" : FaultOfEntry(property.type, number);
                if (fault.empty()) continue;
                Add("V03", *map.element, "the entry " + Quoted(text) + " in ValueMap of " + fName + " " + fault,
                    "write a number of the type " + property.type);
                isGood = false;
                break;
            }
        }
        if (!isGood) return {};
        return entries;
    }

    static std::string FaultOfEntry(const std::string& type, const std::string& number) {
        if (type != "boolean") return FaultOfValue(type, number);
        return number == "0" || number == "1" ? "" : "is neither 0 nor 1";
    }

    void CheckEntries(const TPropertyDeclaration& property, const TQualifierUse& map) {
        const std::optional<std::vector<TEntry>> entries = ReadEntries(property, map);
        if (!entries) return;
        const uint64_t highest = HighestOf(property.type);
        const TRanges meant = RangesMeant(*entries, highest);
        CheckOverlaps(map, meant);
        const std::optional<TRanges> read = RangesRead(*entries, highest);
        if (!read)
            return Add("V04", *map.element,
                       "no word of " + fName + " is shown: the entry " + Quoted(map.values[FindRefused(*entries)]) +
                           " in ValueMap stands behind a range, which the core reads as open upwards",
                       "move the ranges N.. and N..M to the end");
        for (size_t i = 0; i < meant.size(); ++i) {
            if (IsSame(meant[i], (*read)[i]) || IsOpenEnd(meant, *read, i, highest)) continue;
            return Add("V04", *map.element,
                       "the entry " + Quoted(map.values[i]) + " in ValueMap of " + fName + " is read as " +
                           RangeText(*(*read)[i]),
                       "write single numbers, and ranges as N.. behind them");
        }
    }

    void CheckOverlaps(const TQualifierUse& map, const TRanges& ranges) {
        std::vector<TRange> sorted;
        for (const std::optional<TRange>& range : ranges)
            if (range) sorted.push_back(*range);
        std::stable_sort(sorted.begin(), sorted.end(), [](const TRange& a, const TRange& b) { return a.low < b.low; });
        for (size_t i = 1; i < sorted.size(); ++i) {
            const TRange &a = sorted[i - 1], &b = sorted[i];
            const bool isRepeat = a.low == b.low && a.high == b.high;
            if (b.low <= a.high && !isRepeat)
                return Add("V02", *map.element,
                           "in ValueMap of " + fName + " " + RangeText(a) + " and " + RangeText(b) + " overlap",
                           "of two that hold a number the first counts: mend the numbers");
        }
    }

    // Units

    void CheckUnit(const TPropertyDeclaration& property) {
        const TQualifierUse* const use = property.Find("Units");
        const std::string unit = FirstOf(use);
        if (unit.empty()) return CheckIsCounted(property);
        if (property.type == "string" || property.type == "boolean" || property.type == "datetime")
            Add("V09", *use->element,
                "the unit " + Quoted(unit) + " of " + fName + " has no effect: it is " + property.type,
                "declare a number, or remove Units");
        const std::string remedy = RemedyForUnit(unit);
        if (!remedy.empty())
            return Add("V08", *use->element, "the unit " + Quoted(unit) + " of " + fName + " is not known", remedy);
        const std::string named = UnitInName(WordsOf(property.name), unit);
        if (!named.empty())
            Add("V10", *use->element, "the name " + fName + " says " + named + ", and Units says " + Quoted(unit),
                "rename the property, or mend Units");
    }

    void CheckIsCounted(const TPropertyDeclaration& property) {
        if (!property.IsNumber()) return;
        for (const char* const qualifier : {"ValueMap", "Values", "BitMap", "PUnit"})
            if (property.Find(qualifier) != nullptr) return;
        Add("V07", *property.element, "nobody knows what the number " + fName + " counts",
            "give it Units; for a number that is a name, the unit Identifier");
    }

    // Other qualifiers of the display, of which a false one counts as true.
    void CheckDisplay(const TPropertyDeclaration& property) {
        for (const char* const name : {"DISPLAYCPUTIME", "ABBREVIATEUNITS"})
            if (const TQualifierUse* const use = property.Find(name); use != nullptr && !use->IsTrue())
                TellDisplay(*use, "counts, whatever its value");
        const std::string unit = FirstOf(property.Find("Units"));
        if (const TQualifierUse* const use = property.Find("DISPLAYCPUTIME");
            use != nullptr && !EndsWith(unit, "Seconds"))
            TellDisplay(*use, "has an effect on a number of Seconds alone");
        const std::string base = Trimmed(FirstOf(property.Find("BASE")));
        if (!base.empty() && base != "2" && base != "8" && base != "10" && base != "16")
            TellDisplay(*property.Find("BASE"), "is none of 2, 8, 10 and 16");
    }

    void TellDisplay(const TQualifierUse& use, const char* what) {
        Add("V11", *use.element, "the qualifier " + use.name + " of " + fName + " " + what, "mend it, or remove it");
    }

    static std::string FirstOf(const TQualifierUse* use) {
        return use == nullptr || use->values.empty() ? "" : use->values.front();
    }

    void CheckNullMeans(const TPropertyDeclaration& property) {
        const TQualifierUse* const use = property.Find("NullMeans");
        if (const std::string meaning = FirstOf(use); !meaning.empty() && CodeOfAbsence(meaning) == EReason::eNone)
            Add("V16", *use->element,
                "NullMeans of " + fName + ", " + Quoted(meaning) + ", does not begin with a reason",
                "begin it with 'does not apply: ' or 'not reported: '");
    }

    void CheckIsNoDate(const TPropertyDeclaration& property) {
        if (property.type != "string" || property.isArray) return;
        const TWords words = WordsOf(property.name);
        const std::string last = words.empty() ? "" : words.back();
        if (last == "date" || last == "time" || last == "timestamp")
            Add("V15", *property.element, fName + " has '" + last + "' in its name, and is a string",
                "use the type datetime, which is compared and shown as a date");
    }

    // Volatile

    void CheckVolatile(const TPropertyDeclaration& property) {
        const bool isVolatile = property.Is("Volatile");
        if (isVolatile && property.isKey)
            Add("V14", *property.element, "the key " + fName + " is Volatile",
                "choose another key, or remove Volatile");
        if (isVolatile || property.isKey || !fKnowsVolatile || property.Find("Volatile") != nullptr) return;
        const std::string word = ChangingWord(property);
        if (!word.empty())
            Add("V12", *property.element, fName + " has '" + word + "' in its name, and is not Volatile",
                "if it changes on a machine that stays the same, add Volatile with the value true");
    }

    // A word in the name of something that changes. A count or a time may be one of what was built or installed.
    static std::string ChangingWord(const TPropertyDeclaration& property) {
        if (!property.IsNumber() && property.type != "datetime") return "";
        const TWords words = WordsOf(property.name);
        for (const char* const fixed :
             {"max", "maximum", "min", "minimum", "default", "rated", "install", "installed", "build", "manufacture"})
            if (Contains(words, fixed)) return "";
        for (const char* const word : {"free", "used", "uptime", "current", "count", "time"})
            if (Contains(words, word)) return word;
        return "";
    }

    const TMarkup& fMarkup;
    TFindings& fFindings;
    const bool fKnowsVolatile;  // other schemas have no such qualifier
    std::string fName;          // of the property that is checked, with its class
};

}  // namespace

void CheckValues(const TMarkup& markup, const TDocumentSchema& document, const TKnownSchema& known,
                 TFindings& findings) {
    TValueCheck check(markup, known, findings);
    for (const TClassDeclaration& cls : document.classes) check.Check(cls);
}
