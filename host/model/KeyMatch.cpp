#include "model/ObjectPath.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMReference.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"

namespace {

using TBindings = std::map<const std::string, const TCIMValue>;

bool StartsWithName(std::string_view text, const std::string& name) {
    return text.size() > name.size() && text[name.size()] == '=' &&
           IsSameName(std::string(text.substr(0, name.size())), name);
}

std::string EscapeQuotes(const std::string& text) {
    std::string escaped;
    for (const char c : text) escaped += c == '"' || c == '\\' ? std::string{'\\', c} : std::string{c};
    return escaped;
}

// The ways in which people write a value: as it is, as kyr shows it or has it in JSON, or with its quotes escaped.
std::vector<std::string> WaysToWrite(const TCIMValue& value) {
    try {
        const std::string plain = value.ToString(10);
        return {plain, VisibleText(plain), ValidText(plain), EscapeQuotes(plain)};
    } catch (const TKYRException&) {
        return {};
    }
}

bool EndsKey(std::string_view text) { return text.empty() || text.front() == ','; }

/// Reads a text as the keys of one instance, each at most once.
class TKeyReader {
public:
    explicit TKeyReader(const TBindings& bindings) {
        for (const auto& binding : bindings) fLeft.push_back(&binding);
    }

    EKeyMatch Read(std::string_view text) {
        for (size_t i = 0; i < fLeft.size(); ++i) {
            const TBindings::value_type* const key = fLeft[i];
            if (!StartsWithName(text, key->first)) continue;
            fLeft.erase(fLeft.begin() + static_cast<long>(i));
            const EKeyMatch match = ReadValue(text.substr(key->first.size() + 1), key->second);
            fLeft.insert(fLeft.begin() + static_cast<long>(i), key);
            if (match != eNoMatch) return match;
        }
        return eNoMatch;
    }

private:
    EKeyMatch ReadValue(std::string_view text, const TCIMValue& value) {
        const bool quoted = StartsWith(text, "\"");
        if (quoted)
            if (const EKeyMatch match = ReadBare(text.substr(1), value, "\""); match != eNoMatch) return match;
        return ReadBare(text, value, "");
    }

    // With the quote that ends the value.
    EKeyMatch ReadBare(std::string_view text, const TCIMValue& value, std::string_view quote) {
        for (const std::string& way : WaysToWrite(value)) {
            if (!StartsWith(text, way) || !StartsWith(text.substr(way.size()), quote)) continue;
            const EKeyMatch match = ReadRest(text.substr(way.size() + quote.size()));
            if (match != eNoMatch) return match;
        }
        return value.IsReference() && !value.IsNull() ? ReadReference(text, value, quote) : eNoMatch;
    }

    // Wherever the path inside may end.
    EKeyMatch ReadReference(std::string_view text, const TCIMReference& reference, std::string_view quote) {
        for (size_t end = text.find(quote); end <= text.size(); end = text.find(quote, end + 1)) {
            const std::string_view rest = text.substr(end + quote.size());
            if (!EndsKey(rest) || !Names(text.substr(0, end), reference)) continue;
            if (const EKeyMatch match = ReadRest(rest); match != eNoMatch) return match;
        }
        return eNoMatch;
    }

    static bool Names(std::string_view path, const TCIMReference& reference) {
        const std::string& cls = reference.GetClassName();
        if (path.size() <= cls.size() || path[cls.size()] != '.') return false;
        if (!IsSameName(std::string(path.substr(0, cls.size())), cls)) return false;
        return TKeyReader(reference.EnumerateKeyBindings()).Read(path.substr(cls.size() + 1)) == eAllKeys;
    }

    EKeyMatch ReadRest(std::string_view text) {
        if (text.empty()) return fLeft.empty() ? eAllKeys : eSomeKeys;
        return text.front() == ',' ? Read(text.substr(1)) : eNoMatch;
    }

    std::vector<const TBindings::value_type*> fLeft;
};

}  // namespace

EKeyMatch MatchKeys(const std::string& text, const TCIMInstance& instance) {
    const TBindings bindings = instance.BuildPath().EnumerateKeyBindings();
    return TKeyReader(bindings).Read(text);
}
