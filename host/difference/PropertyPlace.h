#ifndef KYR_HOST_DIFFERENCE_PROPERTYPLACE_H
#define KYR_HOST_DIFFERENCE_PROPERTYPLACE_H

#include <cstddef>
#include <string>
#include <vector>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"

/// All properties of an instance, as the core lists them.
using TProperties = std::vector<const TCIMProperty*>;

/// Finds a property in instances of one class at the place that it has in most, which is much quicker than by name.
class TPropertyPlace {
public:
    TPropertyPlace(const TCIMClass& cls, const std::string& name) : fName(name) {
        const std::vector<const TCIMPropertyDecl*> declarations = cls.EnumeratePropertyDecls();
        fDeclaration = cls.FindPropertyDecl(name);
        while (fPlace < declarations.size() && declarations[fPlace] != fDeclaration) ++fPlace;
    }

    const std::string& Name() const { return fName; }
    /// Null if the instance has no such property.
    const TCIMProperty* Find(const TCIMInstance& instance, const TProperties& properties) const {
        const bool isThere = fPlace < properties.size() && &properties[fPlace]->GetDeclaration() == fDeclaration;
        return isThere ? properties[fPlace] : instance.FindProperty(fName);
    }

private:
    std::string fName;
    const TCIMPropertyDecl* fDeclaration = nullptr;
    size_t fPlace = 0;
};

#endif
