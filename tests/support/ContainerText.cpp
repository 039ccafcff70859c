#include "support/ContainerText.h"

#include <sstream>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"

namespace {

using CIM = TCIMValue::TCIMType;

class TText {
public:
    void Add(const TContainer& container) {
        for (const TCIMQualifierDecl* declaration : container.EnumerateQualifiers()) {
            fText << declaration->GetName() << " scope " << declaration->GetScope() << " flavor "
                  << declaration->GetFlavor() << ' ';
            AddLine(declaration->GetValue());
        }
        Add(*container.GetRootClass());
        for (const TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) Add(*cls);
    }
    std::string Take() const { return fText.str(); }

private:
    void Add(const TCIMClass& cls) {
        fText << "class " << cls.GetName() << " : " << (cls.GetSuperClass() ? cls.GetSuperClass()->GetName() : "")
              << '\n';
        AddQualifiers(cls);
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) {
            fText << " declares " << declaration->GetName() << " of " << declaration->GetClass()->GetName() << ' ';
            AddLine(declaration->GetValue());
            AddQualifiers(*declaration);
        }
        for (const TCIMInstance* instance : cls.EnumerateInstances(false)) Add(*instance);
    }

    void Add(const TCIMInstance& instance) {
        fText << " instance\n";
        for (const TCIMProperty* property : instance.EnumerateProperties()) {
            fText << "  " << property->GetName() << (property->GetPropagated() ? " default " : " own ");
            AddLine(property->GetValue());
        }
    }

    void AddQualifiers(const ICIMAllowQualifiers& carrier) {
        for (const TCIMQualifier* qualifier : carrier.EnumerateQualifiers()) {
            fText << "  [" << qualifier->GetName() << " flavor " << qualifier->GetFlavor()
                  << (qualifier->GetPropagated() ? " inherited " : " ");
            AddLine(qualifier->GetValue());
        }
    }

    void AddLine(const TCIMValue& value) {
        Add(value);
        fText << '\n';
    }

    void Add(const TCIMValue& value) {
        fText << static_cast<CIM::ECIMType>(value.GetType());
        if (value.IsArray()) fText << '[' << value.GetMaxArraySize() << ']';
        if (value.IsReference()) fText << "->" << value.GetReferencedClass()->GetName();
        fText << (value.IsNull() ? " NULL" : " ");
        if (value.IsNull()) return;
        if (value.IsArray()) {
            for (const TCIMValue& element : value.operator std::vector<TCIMValue>&()) AddLine(element);
        } else if (value.GetType() == CIM::eCIMReal32) {
            fText << std::hexfloat << value.operator float();
        } else if (value.GetType() == CIM::eCIMReal64) {
            fText << std::hexfloat << value.operator double();
        } else if (value.IsReference()) {
            Add(value.operator TCIMReference());
        } else {
            fText << value.ToString(10);
        }
    }

    void Add(const TCIMReference& reference) {
        fText << reference.GetClassName() << "{\n";
        for (const auto& [name, value] : reference.EnumerateKeyBindings()) {
            fText << name << " = ";
            AddLine(value);
        }
        fText << '}';
    }

    std::ostringstream fText;
};

}  // namespace

std::string TextOf(const TContainer& container) {
    TText text;
    text.Add(container);
    return text.Take();
}
