#include "Schema.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"

namespace {

TCIMQualifier& TrueQualifier(TContainer& container, const std::string& name) {
    using TDecl = TCIMQualifierDecl;
    if (!container.FindQualifierDecl(name)) {
        container.AllocateQualifierDecl(name, TCIMValue(false), TDecl::EScope(), TDecl::EFlavor())->AddToContainer();
    }
    return *new TCIMQualifier(*container.GetQualifierDecl(name), TCIMValue(true));
}

}  // namespace

TCIMValue NullOf(TCIMValue::TCIMType::ECIMType type) { return {TCIMValue::TCIMType(type), 0}; }

TCIMValue NullReferenceTo(TCIMClass& cls) {
    TCIMValue value = NullOf(TCIMValue::TCIMType::eCIMReference);
    value.SetReferencedClass(cls);
    return value;
}

TCIMClass& DeclareClass(TContainer& container, const std::string& name, const std::vector<TField>& fields,
                        std::size_t keys, bool isAssociation) {
    TCIMClass& cls = *container.AllocateClass(name, nullptr);
    if (isAssociation) cls.AddQualifier(TrueQualifier(container, "Association"));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        auto* declaration = new TCIMPropertyDecl(fields[i].name, cls, fields[i].value);
        if (i < keys) declaration->AddQualifier(TrueQualifier(container, "Key"));
        declaration->AddToContainer();
    }
    cls.AddToContainer();
    return cls;
}
