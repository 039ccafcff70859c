#include "isolation/SystemCopy.h"

#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TContainer.h"
#include "kyr/TRootObject.h"

namespace {

void RemoveInstances(TCIMClass& cls) {
    for (auto all = cls.EnumerateInstances(true); !all.empty(); all = cls.EnumerateInstances(true))
        all.front()->GetClass()->RemoveInstance(*all.front());
}

void Copy(const TCIMInstance& instance, const TContainer& target) {
    TCIMInstance* const copy = target.AllocateInstance(target.GetClass(instance.GetClass()->GetName()));
    for (const TCIMProperty* property : instance.EnumerateProperties())
        if (!property->GetPropagated()) copy->SetPropertyValue(property->GetName(), property->GetValue());
    copy->AddToContainer();
}

}  // namespace

void CopySystemToPluginSchema(const TContainer& collected) {
    const TContainer& schema = *TRootObject::GetPluginManager()->GetSchema();
    const std::string& name = TCIMSchemaHelper::kSystemCreationClassName;
    const TCIMClass* const cls = collected.FindClass(name);
    TCIMClass* const shown = schema.FindClass(name);
    if (cls == nullptr || shown == nullptr) return;
    RemoveInstances(*shown);
    for (const TCIMInstance* instance : cls->EnumerateInstances(true)) Copy(*instance, schema);
}
