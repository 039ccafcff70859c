#ifndef KYR_HOST_MODEL_INSTANCECHOICE_H
#define KYR_HOST_MODEL_INSTANCECHOICE_H

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "model/SpokenNames.h"

/// The classes and instances that names on the command line choose. Made before instances are collected; a name that is
/// no class's is looked for among the instances once they are there.
class TInstanceChoice {
public:
    /// Without names, all classes except those of collection states. A name may also be an object path or an instance's
    /// name; a class name may not. Raises TCommandError for an unknown or ambiguous class.
    TInstanceChoice(const TContainer& schema, const std::vector<std::string>& classNames,
                    const std::vector<std::string>& names);

    /// Whether there were no names.
    bool IsAll() const { return fIsAll; }
    /// Whether all instances of the chosen classes are chosen.
    bool IsOfClasses() const { return fNames.empty() && fConditions.empty(); }
    /// The names of the classes to collect; empty: all.
    std::vector<std::string> ClassesToCollect() const;
    /// Those of the names that are of classes, without the classes below them.
    std::vector<std::string> ClassesNamed() const;

    /// Finds the chosen instances among those that were collected. Raises TCommandError for a name that none has, or
    /// several.
    void FindInstances(const TContainer& container);
    /// The chosen classes with their subclasses, arranged as ArrangeClasses does.
    const std::vector<TCIMClass*>& Classes() const { return fClasses; }
    std::vector<TCIMInstance*> InstancesOf(const TCIMClass& cls) const;
    /// Those of the names of classes for which there is no instance.
    std::vector<std::string> NamesOfNone() const;

private:
    struct TAsked {
        std::string name;
        TSpokenClass spoken;
    };

    void AddClass(const std::string& name, const TSpokenClass& spoken);
    void AddConditionally(const TSpokenClass& condition);
    void AddInstance(TCIMInstance& instance);

    bool fIsAll;
    std::vector<TCIMClass*> fClasses;
    std::unordered_set<const TCIMClass*> fWhole;  // those of which all instances are chosen
    std::unordered_map<const TCIMClass*, std::vector<TCIMInstance*>> fSome;
    std::vector<TSpokenClass> fConditions;
    std::vector<TAsked> fAsked;       // the names that are of classes
    std::vector<std::string> fNames;  // that no class has
};

#endif
