#include "saved/CimXmlWriter.h"

#include <map>
#include <string>

#include "base/ExitStatus.h"
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

class TOrder {
public:
    explicit TOrder(const TContainer& container) {
        const TCIMClass& root = *container.GetRootClass();
        for (const TCIMClass* cls : root.EnumerateSubClasses(true)) fClasses.push_back(cls);
        for (const TCIMClass* cls : fClasses) fPlaces[cls];
        PutInSequence(root.EnumerateSubClasses(false));
        for (const TCIMClass* cls : fClasses) AddDemands(*cls);
    }

    TClasses Take() {
        TClasses order;
        for (const TCIMClass* cls : fClasses)
            if (fPlaces[cls].waitsFor == 0) order.push_back(cls);
        for (size_t i = 0; i < order.size(); ++i)
            for (const TCIMClass* cls : fPlaces[order[i]].followers)
                if (--fPlaces[cls].waitsFor == 0) order.push_back(cls);
        if (order.size() != fClasses.size()) Refuse();
        return order;
    }

private:
    struct TPlace {
        size_t waitsFor = 0;
        TClasses followers;
    };

    void AddDemands(const TCIMClass& cls) {
        PutBefore(cls.GetSuperClass(), cls);
        PutInSequence(cls.EnumerateSubClasses(false));
        TClasses referenced;
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
            if (declaration->GetClass() == &cls) AddReferencedClasses(declaration->GetValue(), referenced);
        for (const TCIMClass* target : referenced) PutBefore(target, cls);
    }

    void PutInSequence(const std::vector<TCIMClass*>& siblings) {
        for (size_t i = 1; i < siblings.size(); ++i) PutBefore(siblings[i - 1], *siblings[i]);
    }

    void PutBefore(const TCIMClass* first, const TCIMClass& second) {
        const auto place = fPlaces.find(first);
        if (place == fPlaces.end()) return;  // the root class, which no document defines
        place->second.followers.push_back(&second);
        ++fPlaces[&second].waitsFor;
    }

    [[noreturn]] void Refuse() {
        std::string names;
        for (const TCIMClass* cls : fClasses)
            if (fPlaces[cls].waitsFor != 0) names += (names.empty() ? "'" : ", '") + cls->GetName() + "'";
        throw TCommandError(eExitOutput, "cannot save the classes " + names +
                                             ": they refer to each other, or to themselves, so that none of them "
                                             "could be read back before the others");
    }

    TClasses fClasses;
    std::map<const TCIMClass*, TPlace> fPlaces;
};

}  // namespace

std::vector<const TCIMClass*> OrderClasses(const TContainer& container) { return TOrder(container).Take(); }
