#include "model/ClassNames.h"

#include <algorithm>
#include <set>

#include "base/ExitStatus.h"
#include "base/NearMatches.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/CollectionState.h"
#include "model/SpokenNames.h"

namespace {

template <typename TCondition>
void Drop(std::vector<TCIMClass*>& classes, TCondition condition) {
    classes.erase(std::remove_if(classes.begin(), classes.end(), condition), classes.end());
}

std::vector<TCIMClass*> AllButStates(const TContainer& schema) {
    std::vector<TCIMClass*> classes = schema.GetRootClass()->EnumerateSubClasses(true);
    const std::unordered_set<const TCIMClass*> states = StateClasses(schema);
    Drop(classes, [&states](const TCIMClass* cls) { return states.count(cls) != 0; });
    return classes;
}

}  // namespace

// The core's search raises for a text that cannot be a name.
const TCIMPropertyDecl* FindPropertyNamed(const TCIMClass& cls, const std::string& name) {
    for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
        if (IsSameName(declaration->GetName(), name)) return declaration;
    return nullptr;
}

std::string GetPropertyNamed(const std::vector<TCIMClass*>& classes, const std::string& name) {
    for (const TCIMClass* cls : classes)
        if (const TCIMPropertyDecl* const declaration = FindPropertyNamed(*cls, name)) return declaration->GetName();
    const std::string of = classes.size() != 1 ? "" : " of class " + classes.front()->GetName();
    const std::string near = DidYouMean(name, PropertyNamesOf(classes));
    const std::string hint = classes.empty() ? "" : "; see kyr schema " + classes.front()->GetName();
    throw TCommandError(eExitUsage, "unknown property '" + name + "'" + of + (near.empty() ? hint : near));
}

std::vector<std::string> PropertyNamesOf(const std::vector<TCIMClass*>& classes) {
    std::set<std::string> names;
    for (const TCIMClass* cls : classes)
        for (const TCIMPropertyDecl* declaration : cls->EnumeratePropertyDecls()) names.insert(declaration->GetName());
    return {names.begin(), names.end()};
}

std::vector<TCIMClass*> WithSubClasses(TCIMClass& cls) {
    std::vector<TCIMClass*> classes = cls.EnumerateSubClasses(true);
    classes.insert(classes.begin(), &cls);
    return classes;
}

// Null for every unknown name. The core's search finds the root class for an empty name, and raises for a text that
// cannot be a name.
TCIMClass* FindClassNamed(const TContainer& schema, const std::string& name) {
    try {
        return name.empty() ? nullptr : schema.FindClass(name);
    } catch (const TKYRException&) {
        return nullptr;
    }
}

std::unordered_set<const TCIMClass*> StateClasses(const TContainer& schema) {
    TCIMClass* const states = schema.FindClass(kStateClass);
    if (states == nullptr) return {};
    const std::vector<TCIMClass*> classes = WithSubClasses(*states);
    return {classes.begin(), classes.end()};
}

TCIMClass& GetClassNamed(const TContainer& schema, const std::string& name) {
    if (TCIMClass* const cls = FindOneSpokenClass(schema, name)) return *cls;
    RefuseUnknownClass(schema, name);
}

void RefuseUnknownClass(const TContainer& schema, const std::string& name) {
    throw TCommandError(eExitUsage, "unknown class '" + name + "'" + DidYouMean(name, NamesLike(schema, name)));
}

std::vector<TCIMClass*> SelectAllClasses(const TContainer& schema) {
    std::vector<TCIMClass*> classes = AllButStates(schema);
    ArrangeClasses(classes);
    return classes;
}

void ArrangeClasses(std::vector<TCIMClass*>& classes) {
    SortByName(classes);
    classes.erase(std::unique(classes.begin(), classes.end()), classes.end());
    std::stable_partition(classes.begin(), classes.end(), [](const TCIMClass* cls) { return !cls->IsAssociation(); });
}

std::vector<TCIMClass*> AssociationsOf(TCIMClass& cls) {
    std::vector<TCIMClass*> classes = WithSubClasses(cls);
    Drop(classes, [](const TCIMClass* each) { return !each->IsAssociation(); });
    SortByName(classes);
    return classes;
}

std::vector<std::string> NamesOf(const std::vector<TCIMClass*>& classes) {
    std::vector<std::string> names;
    names.reserve(classes.size());
    for (const TCIMClass* cls : classes) names.push_back(cls->GetName());
    return names;
}

void SortByName(std::vector<TCIMClass*>& classes) {
    std::sort(classes.begin(), classes.end(),
              [](const TCIMClass* a, const TCIMClass* b) { return TNameLess()(a->GetName(), b->GetName()); });
}
