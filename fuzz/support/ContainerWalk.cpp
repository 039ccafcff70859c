#include "support/ContainerWalk.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"
#include "support/FuzzSupport.h"

namespace {

/// Avoids the exceptions for NULL values: most values are NULL, and the exceptions would slow the fuzzer down.
void Print(const TCIMValue& value) {
    if (!value.IsNull()) StatusOf([&] { value.ToString(10); });
}

void WalkQualifiers(const ICIMAllowQualifiers& carrier) {
    for (const TCIMQualifier* qualifier : carrier.EnumerateQualifiers()) {
        Require(carrier.GetQualifier(qualifier->GetName()) == qualifier, "a qualifier is found under its name");
        Print(qualifier->GetValue());
    }
}

void WalkProperties(const TCIMInstance& instance) {
    for (const TCIMProperty* property : instance.EnumerateProperties()) {
        Require(property->GetValue().GetType() == property->GetType(), "a value has the type that is declared for it");
        Print(property->GetValue());
        StatusOf([&] { property->ToString(); });
        StatusOf([&] { property->ToStringVector(); });
    }
}

void WalkInstance(const TCIMInstance& instance, bool isFiledByKeys) {
    WalkProperties(instance);
    StatusOf([&] { instance.References("", ""); });
    StatusOf([&] { instance.Associators("", "", "", ""); });
    if (!isFiledByKeys) return;
    const TCIMInstance* const found = instance.GetClass()->FindInstance(instance.BuildPath());
    Require(found != nullptr, "an instance is found under its path");
    Require(found->BuildPath().GetPath() == instance.BuildPath().GetPath(), "what is found has the path asked for");
}

void WalkClass(const TCIMClass& cls, bool isFiledByKeys) {
    Require(IsFoundUnderItsName(cls), "a class is found under its name");
    Require(cls.GetSuperClass() != nullptr, "a class has a superclass");
    WalkQualifiers(cls);
    for (const TCIMPropertyDecl* property : cls.EnumeratePropertyDecls()) {
        Require(cls.FindPropertyDecl(property->GetName()) == property, "a property is found under its name");
        Print(property->GetValue());
        WalkQualifiers(*property);
    }
    StatusOf([&] { cls.Associators("", "", "", ""); });
    for (const TCIMInstance* instance : cls.EnumerateInstances(false)) WalkInstance(*instance, isFiledByKeys);
}

}  // namespace

bool IsFoundUnderItsName(const TCIMClass& cls) {
    const TContainer& container = *cls.GetContainer();
    return container.FindClass(cls.GetName()) == (cls.GetName().empty() ? container.GetRootClass() : &cls);
}

void WalkContainer(const TContainer& container, bool isFiledByKeys) {
    for (const TCIMQualifierDecl* declaration : container.EnumerateQualifiers()) {
        Require(container.FindQualifierDecl(declaration->GetName()) == declaration, "a declaration is found by name");
        Print(declaration->GetValue());
    }
    for (const TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) WalkClass(*cls, isFiledByKeys);
}
