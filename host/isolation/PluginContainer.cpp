#include "isolation/PluginContainer.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/CoreLog.h"
#include "base/Text.h"
#include "isolation/InstanceRecords.h"
#include "isolation/RecordStream.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TKYRException.h"
#include "kyr/TRefusedCall.h"
#include "kyr/TRootObject.h"
#include "model/ClassNames.h"
#include "states/MissingSources.h"
#include "states/PluginLibrary.h"
#include "states/StateInstances.h"

namespace {

void Copy(const TCIMInstance& instance, const TContainer& target) {
    TCIMInstance* const copy = target.AllocateInstance(target.GetClass(instance.GetClass()->GetName()));
    for (const TCIMProperty* property : instance.EnumerateProperties())
        if (!property->GetPropagated()) copy->SetPropertyValue(property->GetName(), property->GetValue());
    copy->AddToContainer();
}

}  // namespace

// The core takes a class without a name and a property without a type, and neither can be collected or saved. Refused,
// it costs its document alone.
class TPluginClass : public TCIMClass {
public:
    using TCIMClass::TCIMClass;

    void AddToContainer() const override {
        const auto hasNoType = [](const TCIMPropertyDecl* declaration) {
            return declaration->GetType() == TCIMValue::TCIMType::eCIMNone;
        };
        const std::vector<const TCIMPropertyDecl*> declarations = EnumeratePropertyDecls();
        if (GetName().empty() || std::any_of(declarations.begin(), declarations.end(), hasNoType))
            throw TKYRException(kyrStatusInvalidClass);
        TCIMClass::AddToContainer();
    }
};

class TPluginInstance : public TCIMInstance {
public:
    TPluginInstance(TCIMClass* cls, const TPluginContainer& container) : TCIMInstance(cls), fContainer(container) {}

    void AddToContainer() const override {
        TCIMInstance::AddToContainer();
        fContainer.Put(*this, fNumber);
    }

private:
    const TPluginContainer& fContainer;
    mutable uint32_t fNumber = 0;  // 0: not stored yet
};

void TPluginContainer::StartStreaming(TRecordStream& stream, std::function<void()> beforeRecord) {
    fStream = &stream;
    fBeforeRecord = std::move(beforeRecord);
}

TCIMClass* TPluginContainer::AllocateClass(const std::string& name, TCIMClass* superclass) const {
    if (FindClassNamed(*this, name) != nullptr) fDuplicates.push_back(name);
    return new TPluginClass(*GetRootClass()->GetContainer(), name, superclass);
}

TCIMInstance* TPluginContainer::AllocateInstance(TCIMClass* cls) const {
    if (cls == GetRootClass()) throw TKYRException(kyrStatusInvalidClass);  // which the empty name finds
    const auto owner = fActive == nullptr ? fOwners.end() : fOwners.find(cls);
    if (owner != fOwners.end() && owner->second != fActive) throw TKYRException(kyrStatusAccessDenied);
    fLastClass = cls;
    if (fStream == nullptr) return Note(TContainer::AllocateInstance(cls));
    fBeforeRecord();
    fStream->SetCurrentClass(cls->GetName());
    return new TPluginInstance(cls, *this);
}

void TPluginContainer::AddPlaceTo(TRefusedCall& call) const {
    if (StartsWith(call.call, "kyrSetDateTime") && fLastClass != nullptr) call.className = fLastClass->GetName();
}

TCIMInstance* TPluginContainer::Note(TCIMInstance* instance) const {
    if (fActive != nullptr && instance->GetClass()->GetName() == kMissingSourceClass) fMakers[instance] = fActive;
    return instance;
}

const TPluginLibrary* TPluginContainer::FindMaker(const TCIMInstance& instance) const {
    const auto found = fMakers.find(&instance);
    return found == fMakers.end() ? nullptr : found->second;
}

void TPluginContainer::Put(const TCIMInstance& instance, uint32_t& number) const {
    fBeforeRecord();
    if (number == 0) number = ++fCount;
    PutInstance(*fStream, instance, number);
}

void CopySystemToPluginSchema(const TContainer& collected) {
    const TContainer& schema = *TRootObject::GetPluginManager()->GetSchema();
    const std::string& name = TCIMSchemaHelper::kSystemCreationClassName;
    const TCIMClass* const cls = collected.FindClass(name);
    TCIMClass* const shown = schema.FindClass(name);
    if (cls == nullptr || shown == nullptr) return;
    for (TCIMClass* each : WithSubClasses(*shown)) RemoveInstances(*each);
    for (const TCIMInstance* instance : cls->EnumerateInstances(true)) Copy(*instance, schema);
}

void ReadPremises(const TPluginLibrary& library) {
    const TLogCapture capture;  // drops the lines: the core logs them again when it loads the library of that document
    for (const std::string& document : library.premises) {
        try {
            TRootObject::GetPluginManager()->GetSchema()->PopulateContainerFromFile(document);
        } catch (const TKYRException&) {
        }
    }
}
