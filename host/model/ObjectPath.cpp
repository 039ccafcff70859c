#include "model/ObjectPath.h"

#include <algorithm>
#include <vector>

#include "base/ExitStatus.h"
#include "base/NearMatches.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "model/ClassNames.h"
#include "model/Values.h"

namespace {

constexpr size_t kMostNamed = 3;
constexpr size_t kMostCompared = 1000;  // for likeness, which takes time

using TInstances = std::vector<TCIMInstance*>;

struct TPath {
    std::string cls;
    std::string keys;
};

TPath Split(const std::string& path) {
    const size_t dot = path.find('.');
    if (dot == std::string::npos) return {path, ""};
    return {path.substr(0, dot), path.substr(dot + 1)};
}

[[noreturn]] void Refuse(const std::string& text) { throw TCommandError(eExitUsage, text); }

// Those of which all keys are named, or else those of which some are.
TInstances Select(const TInstances& instances, const std::string& keys) {
    if (keys.empty()) return instances;
    TInstances all, some;
    for (TCIMInstance* instance : instances) {
        const EKeyMatch match = MatchKeys(keys, *instance);
        if (match != eNoMatch) (match == eAllKeys ? all : some).push_back(instance);
    }
    return all.empty() ? some : all;
}

// Nothing sets instances of one path apart: references to them mean the first.
bool AreOfOnePath(const TInstances& instances) {
    const std::string path = instances.front()->BuildPath().GetPath();
    return std::all_of(instances.begin(), instances.end(),
                       [&path](const TCIMInstance* instance) { return instance->BuildPath().GetPath() == path; });
}

std::string ListOf(const TInstances& instances) {
    std::string text;
    for (size_t i = 0; i < instances.size() && i < kMostNamed; ++i)
        text += (i == 0 ? "" : " or ") + VisiblePath(*instances[i]);
    return text + (instances.size() > kMostNamed ? " or others" : "");
}

bool HasKey(const TInstances& instances, const std::string& name) {
    return std::any_of(instances.begin(), instances.end(), [&name](const TCIMInstance* instance) {
        const std::vector<std::string> keys = instance->GetClass()->EnumerateKeyNames();
        return std::any_of(keys.begin(), keys.end(), [&name](const std::string& key) { return IsSameName(key, name); });
    });
}

void RefuseUnknownKey(const TPath& path, const TInstances& instances) {
    const size_t equals = path.keys.find('=');
    if (equals == std::string::npos) Refuse("'" + path.keys + "' is no key: a path is Class.Key=\"value\"");
    const std::string name = path.keys.substr(0, equals);
    if (HasKey(instances, name)) return;
    const std::vector<std::string> keys = instances.front()->GetClass()->EnumerateKeyNames();
    std::string list;
    for (const std::string& key : keys) list += (list.empty() ? "" : ", ") + key;
    Refuse("class " + path.cls + " has no key '" + name + "'" + DidYouMean(name, keys) + " (its keys: " + list + ")");
}

// With the first key of the path alone, as people write it.
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
    Refuse(text + (near.empty() ? ": " + ListOf(instances) : DidYouMean(path, paths)));
}

}  // namespace

TCIMInstance& GetInstanceNamed(const TContainer& container, const std::string& text) {
    const TPath path = Split(text);
    const TCIMClass& cls = GetClassNamed(container, path.cls);
    const TInstances instances = cls.EnumerateInstances(true);
    if (instances.empty()) Refuse("there is no instance of class " + cls.GetName());
    const TInstances selected = Select(instances, path.keys);
    if (!selected.empty() && AreOfOnePath(selected)) return *selected.front();
    if (!selected.empty())
        Refuse("'" + text + "' may be any of " + std::to_string(selected.size()) + ": " + ListOf(selected));
    RefuseUnknownKey({cls.GetName(), path.keys}, instances);
    RefuseUnknownInstance(text, cls.GetName(), instances);
}
