#include "isolation/InstanceFrame.h"

#include <memory>

#include "isolation/TapeValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"

namespace {

void TakeProperties(TTapeReader& frame, TCIMInstance& instance, TContainer& container) {
    while (!frame.IsAtEnd()) {
        const std::string name = frame.TakeText();
        instance.SetPropertyValue(name, TakeValue(frame, container));
    }
}

}  // namespace

void PutInstance(TTape& tape, const TCIMInstance& instance, uint32_t number) {
    tape.Begin(EFrame::eInstance);
    tape.PutNumber(number);
    tape.PutText(instance.GetClass()->GetName());
    for (const TCIMProperty* property : instance.EnumerateProperties()) {
        if (property->GetPropagated()) continue;
        tape.PutText(property->GetName());
        PutValue(tape, property->GetValue());
    }
    tape.Commit();
}

void TInstanceFrames::Store(TTapeReader& frame, std::string& className) {
    const uint32_t number = frame.TakeNumber<uint32_t>();
    className = frame.TakeText();
    if (fInstances.empty()) fFirst = number;
    const uint32_t index = number - fFirst;
    if (index > fInstances.size()) throw TTapeError();
    if (index < fInstances.size()) {
        TCIMInstance* const stored = fInstances[index];
        if (stored == nullptr) return;
        TakeProperties(frame, *stored, fContainer);
        return stored->AddToContainer();
    }
    fInstances.push_back(nullptr);
    if (IsSkipped(className)) return;
    std::unique_ptr<TCIMInstance> instance(fContainer.AllocateInstance(fContainer.GetClass(className)));
    TakeProperties(frame, *instance, fContainer);
    instance->Validate();
    TCIMInstance* const stored = instance.release();  // storing it takes it over, whatever happens
    stored->AddToContainer();
    fInstances.back() = stored;
}
