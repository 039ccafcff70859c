#include "isolation/StreamingContainer.h"

#include <utility>

#include "isolation/InstanceFrame.h"
#include "isolation/Tape.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TKYRException.h"

class TStreamedInstance : public TCIMInstance {
public:
    TStreamedInstance(TCIMClass* cls, const TStreamingContainer& container)
        : TCIMInstance(cls), fContainer(container) {}

    void AddToContainer() const override {
        TCIMInstance::AddToContainer();
        fContainer.Put(*this, fNumber);
    }

private:
    const TStreamingContainer& fContainer;
    mutable uint32_t fNumber = 0;  // 0: not stored yet
};

void TStreamingContainer::StartStreaming(TTape& tape, std::function<void()> beforeFrame) {
    fTape = &tape;
    fBeforeFrame = std::move(beforeFrame);
}

TCIMInstance* TStreamingContainer::AllocateInstance(TCIMClass* cls) const {
    const auto owner = fTurn == nullptr ? fOwners.end() : fOwners.find(cls);
    if (owner != fOwners.end() && owner->second != fTurn) throw TKYRException(kyrStatusAccessDenied);
    if (fTape == nullptr) return TContainer::AllocateInstance(cls);
    fBeforeFrame();
    fTape->SetInHand(cls->GetName());
    return new TStreamedInstance(cls, *this);
}

void TStreamingContainer::Put(const TCIMInstance& instance, uint32_t& number) const {
    fBeforeFrame();
    if (number == 0) number = ++fCount;
    PutInstance(*fTape, instance, number);
}
