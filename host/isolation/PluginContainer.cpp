#include "isolation/PluginContainer.h"

#include <utility>

#include "isolation/InstanceRecords.h"
#include "isolation/RecordStream.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TKYRException.h"

namespace {

bool HasClass(const TContainer& container, const std::string& name) {
    try {
        return container.FindClass(name) != nullptr;
    } catch (const TKYRException&) {  // it cannot be a name of a class, as adding the class will tell
        return false;
    }
}

}  // namespace

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
    TCIMClass* const cls = TContainer::AllocateClass(name, superclass);
    if (HasClass(*this, name)) fDuplicates.push_back(name);
    return cls;
}

TCIMInstance* TPluginContainer::AllocateInstance(TCIMClass* cls) const {
    const auto owner = fActive == nullptr ? fOwners.end() : fOwners.find(cls);
    if (owner != fOwners.end() && owner->second != fActive) throw TKYRException(kyrStatusAccessDenied);
    if (fStream == nullptr) return TContainer::AllocateInstance(cls);
    fBeforeRecord();
    fStream->SetCurrentClass(cls->GetName());
    return new TPluginInstance(cls, *this);
}

void TPluginContainer::Put(const TCIMInstance& instance, uint32_t& number) const {
    fBeforeRecord();
    if (number == 0) number = ++fCount;
    PutInstance(*fStream, instance, number);
}
