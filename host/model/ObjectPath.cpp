#include "model/ObjectPath.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "base/ExitStatus.h"
#include "base/NearMatches.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMReference.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "model/SpokenNames.h"
#include "model/Values.h"

namespace {

/// How far the keys of an object path name an instance.
enum EKeyMatch { eNoMatch, eSomeKeys, eAllKeys };

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

// The forms in which users write a value: as it is, as kyr prints it or writes it to JSON, or with its quotes escaped.
std::vector<std::string> WrittenForms(const TCIMValue& value) {
    try {
        const std::string plain = value.ToString(10);
        return {plain, VisibleText(plain), ValidText(plain), EscapeQuotes(plain)};
    } catch (const TKYRException&) {
        return {};
    }
}

bool IsEndOfKey(std::string_view text) { return text.empty() || text.front() == ','; }

/// Compares the text behind the dot of an object path with the keys of one instance. Object paths have no escapes, so
/// that the text alone does not show where a value ends. Therefore the reader tries every key that is left, each in
/// every form, and goes back if the rest of the text does not match.
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

    // The value, then the quote that ends it, if there is one.
    EKeyMatch ReadBare(std::string_view text, const TCIMValue& value, std::string_view quote) {
        for (const std::string& form : WrittenForms(value)) {
            if (!StartsWith(text, form) || !StartsWith(text.substr(form.size()), quote)) continue;
            const EKeyMatch match = ReadRest(text.substr(form.size() + quote.size()));
            if (match != eNoMatch) return match;
        }
        return value.IsReference() && !value.IsNull() ? ReadReference(text, value, quote) : eNoMatch;
    }

    // A path in a path: it may end at each quote, or without quotes at each comma.
    EKeyMatch ReadReference(std::string_view text, const TCIMReference& reference, std::string_view quote) {
        for (size_t end = text.find(quote); end <= text.size(); end = text.find(quote, end + 1)) {
            const std::string_view rest = text.substr(end + quote.size());
            if (!IsEndOfKey(rest) || !IsPathOf(text.substr(0, end), reference)) continue;
            if (const EKeyMatch match = ReadRest(rest); match != eNoMatch) return match;
        }
        return eNoMatch;
    }

    static bool IsPathOf(std::string_view path, const TCIMReference& reference) {
        const std::string& cls = reference.GetClassName();
        if (path.size() <= cls.size() || path[cls.size()] != '.') return false;
        if (!IsSameName(std::string(path.substr(0, cls.size())), cls)) return false;
        return TKeyReader(reference.EnumerateKeyBindings()).Read(path.substr(cls.size() + 1)) == eAllKeys;
    }

    EKeyMatch ReadRest(std::string_view text) {
        if (text.empty()) return fLeft.empty() ? eAllKeys : eSomeKeys;
        return text.front() == ',' ? Read(text.substr(1)) : eNoMatch;
    }

    std::vector<const TBindings::value_type*> fLeft;  // the keys that were not read yet
};

EKeyMatch MatchKeys(const std::string& text, const TCIMInstance& instance) {
    const TBindings bindings = instance.BuildPath().EnumerateKeyBindings();
    return TKeyReader(bindings).Read(text);
}

constexpr size_t kMostCompared = 1000;  // more would take too long to compare with a misspelt path

using TInstances = std::vector<TCIMInstance*>;

/// An object path cut at its dot.
struct TPathParts {
    std::string cls;
    std::string keys;
};

TPathParts Split(const std::string& path) {
    const size_t dot = path.find('.');
    if (dot == std::string::npos) return {path, ""};
    return {path.substr(0, dot), path.substr(dot + 1)};
}

[[noreturn]] void Refuse(const std::string& text) { throw TCommandError(eExitUsage, text); }

// The instances of which the text has all keys; if there are none, those of which it has some.
TInstances Select(const TInstances& instances, const std::string& keys) {
    if (keys.empty()) return instances;
    TInstances all, some;
    for (TCIMInstance* instance : instances) {
        const EKeyMatch match = MatchKeys(keys, *instance);
        if (match != eNoMatch) (match == eAllKeys ? all : some).push_back(instance);
    }
    return all.empty() ? some : all;
}

// Instances with the same path cannot be told apart; as for references to them, the first is taken.
bool AreOfOnePath(const TInstances& instances) {
    const std::string path = instances.front()->BuildPath().GetPath();
    return std::all_of(instances.begin(), instances.end(),
                       [&path](const TCIMInstance* instance) { return instance->BuildPath().GetPath() == path; });
}

bool HasKey(const TInstances& instances, const std::string& name) {
    return std::any_of(instances.begin(), instances.end(), [&name](const TCIMInstance* instance) {
        const std::vector<std::string> keys = instance->GetClass()->EnumerateKeyNames();
        return std::any_of(keys.begin(), keys.end(), [&name](const std::string& key) { return IsSameName(key, name); });
    });
}

void RefuseUnknownKey(const TPathParts& path, const TInstances& instances) {
    const size_t equals = path.keys.find('=');
    if (equals == std::string::npos) Refuse("'" + path.keys + "' is no key: a path is Class.Key=\"value\"");
    const std::string name = path.keys.substr(0, equals);
    if (HasKey(instances, name)) return;
    const std::vector<std::string> keys = instances.front()->GetClass()->EnumerateKeyNames();
    Refuse("class " + path.cls + " has no key '" + name + "'" + DidYouMean(name, keys) + " (its keys: " + Join(keys) +
           ")");
}

// The instance's path with the one key that the user's path starts with, for comparison with that.
std::string ShortPath(const TCIMInstance& instance, const std::string& path) {
    const std::string start = path.substr(0, path.find('='));
    const TCIMProperty* const key = instance.FindProperty(start.substr(start.find('.') + 1));
    return key == nullptr ? VisiblePath(instance) : start + "=\"" + PlainText(key->GetValue()) + "\"";
}

[[noreturn]] void RefuseUnknownInstance(const std::string& path, const std::string& cls, const TInstances& instances) {
    std::vector<std::string> paths;
    for (size_t i = 0; i < instances.size() && i < kMostCompared; ++i) {
        paths.push_back(VisiblePath(*instances[i]));
        const std::string shorter = ShortPath(*instances[i], path);
        if (shorter != paths.back()) paths.push_back(shorter);
    }
    const std::vector<std::string> near = FindNearMatches(path, paths);
    const std::string count = std::to_string(instances.size()) + (instances.size() == 1 ? " instance" : " instances");
    const std::string text = "there is no '" + path + "' among the " + count + " of class " + cls;
    Refuse(text + (near.empty() ? ": " + ListOfPaths(instances) : DidYouMean(path, paths)));
}

// Null for the path of an instance and for the name of a class.
TCIMInstance* FindCalled(const TContainer& container, const std::string& text) {
    const bool isPath = !FindSpokenClass(container, Split(text).cls).classes.empty();
    if (isPath) return nullptr;
    TCIMInstance* const called = FindSpokenInstance(container, text);
    if (called == nullptr && text.find('=') == std::string::npos) RefuseUnknownName(container, text);
    return called;
}

}  // namespace

TCIMInstance& GetInstanceNamed(const TContainer& container, const std::string& text) {
    if (TCIMInstance* const spoken = FindCalled(container, text)) return *spoken;
    const TPathParts path = Split(text);
    const TCIMClass& cls = GetClassNamed(container, path.cls);
    const TInstances instances = cls.EnumerateInstances(true);
    if (instances.empty()) Refuse("there is no instance of class " + cls.GetName());
    const TInstances selected = Select(instances, path.keys);
    if (!selected.empty() && AreOfOnePath(selected)) return *selected.front();
    if (!selected.empty())
        Refuse("'" + text + "' may be any of " + std::to_string(selected.size()) + ": " + ListOfPaths(selected));
    RefuseUnknownKey({cls.GetName(), path.keys}, instances);
    RefuseUnknownInstance(text, cls.GetName(), instances);
}
