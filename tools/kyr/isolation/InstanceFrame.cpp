#include "isolation/InstanceFrame.h"

#include "isolation/TapeValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"

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
    if (index == fInstances.size()) return Add(frame, className);
    if (fInstances[index] != nullptr) Update(frame, *fInstances[index]);
}

void TInstanceFrames::Add(TTapeReader& frame, const std::string& className) {
    fInstances.push_back(nullptr);
    if (IsSkipped(className)) return;
    TCIMInstance* const stored = Take(frame, fContainer.GetClass(className)).release();
    stored->AddToContainer();  // which takes it over, whatever happens
    fInstances.back() = stored;
}

// What is stored already stays as it is if the frame is refused.
void TInstanceFrames::Update(TTapeReader& frame, TCIMInstance& stored) {
    const std::unique_ptr<TCIMInstance> instance = Take(frame, stored.GetClass());
    instance->BuildPath().GetPath();  // which raises what storing it would
    for (const TCIMProperty* property : instance->EnumerateProperties())
        if (!property->GetPropagated()) stored.SetPropertyValue(property->GetName(), property->GetValue());
    stored.AddToContainer();
}

std::unique_ptr<TCIMInstance> TInstanceFrames::Take(TTapeReader& frame, TCIMClass* cls) {
    std::unique_ptr<TCIMInstance> instance(fContainer.AllocateInstance(cls));
    while (!frame.IsAtEnd()) {
        const std::string name = frame.TakeText();
        instance->SetPropertyValue(name, TakeValue(frame, fContainer));
    }
    instance->Validate();
    return instance;
}
