#include "saved/CimXmlWriter.h"

#include <map>
#include <string>

#include "base/ExitStatus.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"

namespace {

using TClasses = std::vector<const TCIMClass*>;

void AddReferencedClasses(const TCIMValue& value, TClasses& classes) {
    if (!value.IsReference()) return;
    classes.push_back(value.GetReferencedClass());
    if (value.IsNull()) return;
    for (const auto& [name, key] : value.operator TCIMReference().EnumerateKeyBindings())
        AddReferencedClasses(key, classes);
}

/// Sorts classes topologically: a class can be written once all that it depends on is written.
class TClassSorter {
public:
    explicit TClassSorter(const TContainer& container) {
        const TCIMClass& root = *container.GetRootClass();
        for (const TCIMClass* cls : root.EnumerateSubClasses(true)) fClasses.push_back(cls);
        for (const TCIMClass* cls : fClasses) fDependencies[cls];
        KeepSequence(root.EnumerateSubClasses(false));
        for (const TCIMClass* cls : fClasses) AddDependencies(*cls);
    }

    TClasses Sort() {
        TClasses order;
        for (const TCIMClass* cls : fClasses)
            if (fDependencies[cls].waitsFor == 0) order.push_back(cls);
        for (size_t i = 0; i < order.size(); ++i)
            for (const TCIMClass* cls : fDependencies[order[i]].followers)
                if (--fDependencies[cls].waitsFor == 0) order.push_back(cls);
        if (order.size() != fClasses.size()) Refuse();
        return order;
    }

private:
    struct TDependencies {
        size_t waitsFor = 0;  // how many classes must still be written before it
        TClasses followers;   // the classes that wait for it
    };

    void AddDependencies(const TCIMClass& cls) {
        PutBefore(cls.GetSuperClass(), cls);
        KeepSequence(cls.EnumerateSubClasses(false));
        TClasses referenced;
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
            if (declaration->GetClass() == &cls) AddReferencedClasses(declaration->GetValue(), referenced);
        for (const TCIMClass* target : referenced) PutBefore(target, cls);
    }

    void KeepSequence(const std::vector<TCIMClass*>& siblings) {
        for (size_t i = 1; i < siblings.size(); ++i) PutBefore(siblings[i - 1], *siblings[i]);
    }

    void PutBefore(const TCIMClass* first, const TCIMClass& second) {
        const auto found = fDependencies.find(first);
        if (found == fDependencies.end()) return;  // the root class, which no document defines
        found->second.followers.push_back(&second);
        ++fDependencies[&second].waitsFor;
    }

    [[noreturn]] void Refuse() {
        std::vector<std::string> names;
        for (const TCIMClass* cls : fClasses)
            if (fDependencies[cls].waitsFor != 0) names.push_back("'" + cls->GetName() + "'");
        throw TCommandError(eExitOutput, "cannot save the classes " + Join(names) +
                                             ": they refer to each other, or to themselves, so that none of them "
                                             "could be read back before the others");
    }

    TClasses fClasses;
    std::map<const TCIMClass*, TDependencies> fDependencies;
};

}  // namespace

std::vector<const TCIMClass*> OrderClasses(const TContainer& container) { return TClassSorter(container).Sort(); }
