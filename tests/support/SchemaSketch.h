#ifndef SCHEMASKETCH_H
#define SCHEMASKETCH_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TCIMReference.h"
#include "kyr/TCIMValue.h"
#include "kyr/TContainer.h"

// Schemas and data made by hand. Without GoogleTest, so that the fuzz targets can use it, too.

using CIM = TCIMValue::TCIMType;

inline TCIMValue Null(CIM::ECIMType type, unsigned int maxArraySize = 0) { return TCIMValue(type, maxArraySize); }
inline TCIMValue NullReferenceTo(TCIMClass& cls) {
    TCIMValue value = Null(CIM::eCIMReference);
    value.SetReferencedClass(cls);
    return value;
}
/// To a class, or to its instance of that key.
inline TCIMReference To(TCIMClass& cls, const char* id = nullptr, const char* key = "ID") {
    TCIMReference reference(nullptr);
    reference.SetClass(cls);
    if (id != nullptr) reference.AddKeyValue(key, TCIMValue(id));
    return reference;
}

/// A property in words: name, type and default, and the qualifiers that are true on it.
struct PropertySketch {
    std::string name;
    TCIMValue value;
    std::vector<std::string> qualifiers = {};
};
inline PropertySketch Key(const std::string& name, const TCIMValue& value = Null(CIM::eCIMString)) {
    return {name, value, {"KEY"}};
}
inline PropertySketch KeyReference(const std::string& name, TCIMClass& cls) {
    return {name, NullReferenceTo(cls), {"KEY"}};
}

/// Makes schemas and data by hand. The New operations leave the object with the caller; the Add operations hand it to
/// its owner, and a failure on the way is an exception.
class SchemaBuilder {
public:
    using EFlavor = TCIMQualifierDecl::EFlavor;
    using TNames = std::vector<std::string>;
    using TValues = std::vector<std::pair<std::string, TCIMValue>>;
    static constexpr EFlavor kFlavor = TCIMQualifierDecl::eFlavorOverridable | TCIMQualifierDecl::eFlavorToSubclass;

    explicit SchemaBuilder(TContainer& container) : fContainer(container) {}

    /// The declaration of that name; a boolean one is added if there is none.
    TCIMQualifierDecl& Declaration(const std::string& name) const {
        if (TCIMQualifierDecl* found = fContainer.FindQualifierDecl(name)) return *found;
        TCIMQualifierDecl* made = fContainer.AllocateQualifierDecl(name, Null(CIM::eCIMBoolean), {}, kFlavor);
        made->AddToContainer();
        return *made;
    }

    std::unique_ptr<TCIMQualifier> NewQualifier(const std::string& name, const TCIMValue& value = TCIMValue(true),
                                                EFlavor flavor = kFlavor) const {
        return std::make_unique<TCIMQualifier>(Declaration(name), value, flavor);
    }
    TCIMQualifier& Qualify(ICIMAllowQualifiers& carrier, const std::string& name,
                           const TCIMValue& value = TCIMValue(true), EFlavor flavor = kFlavor) const {
        std::unique_ptr<TCIMQualifier> made = NewQualifier(name, value, flavor);
        carrier.AddQualifier(*made);
        TCIMQualifier* carried = carrier.GetQualifier(name);
        if (carried == made.get()) made.release();
        return *carried;
    }

    std::unique_ptr<TCIMPropertyDecl> NewProperty(TCIMClass& cls, const PropertySketch& sketch) const {
        auto made = std::make_unique<TCIMPropertyDecl>(sketch.name, cls, sketch.value);
        for (const std::string& name : sketch.qualifiers) Qualify(*made, name);
        return made;
    }
    TCIMPropertyDecl& AddProperty(TCIMClass& cls, const PropertySketch& sketch) const {
        std::unique_ptr<TCIMPropertyDecl> made = NewProperty(cls, sketch);
        made->AddToContainer();
        return *made.release();
    }

    std::unique_ptr<TCIMClass> NewClass(const std::string& name, const std::vector<PropertySketch>& properties = {},
                                        TCIMClass* superclass = nullptr, const TNames& qualifiers = {}) const {
        std::unique_ptr<TCIMClass> made(fContainer.AllocateClass(name, superclass));
        for (const std::string& qualifier : qualifiers) Qualify(*made, qualifier);
        for (const PropertySketch& property : properties) AddProperty(*made, property);
        return made;
    }
    TCIMClass& AddClass(const std::string& name, const std::vector<PropertySketch>& properties,
                        TCIMClass* superclass = nullptr, const TNames& qualifiers = {}) const {
        std::unique_ptr<TCIMClass> made = NewClass(name, properties, superclass, qualifiers);
        made->AddToContainer();
        return *made.release();
    }

    std::unique_ptr<TCIMInstance> NewInstance(TCIMClass& cls, const TValues& values = {}) const {
        std::unique_ptr<TCIMInstance> made(fContainer.AllocateInstance(&cls));
        for (const auto& [name, value] : values) made->SetPropertyValue(name, value);
        return made;
    }
    TCIMInstance& AddInstance(TCIMClass& cls, const TValues& values = {}) const {
        TCIMInstance* made = NewInstance(cls, values).release();
        made->AddToContainer();
        return *made;
    }

private:
    TContainer& fContainer;
};

#endif
