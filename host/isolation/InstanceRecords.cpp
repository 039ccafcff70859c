#include "isolation/InstanceRecords.h"

#include "isolation/ValueRecords.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"

void PutInstance(TRecordStream& stream, const TCIMInstance& instance, uint32_t number) {
    stream.Begin(ERecord::eInstance);
    stream.PutNumber(number);
    stream.PutText(instance.GetClass()->GetName());
    for (const TCIMProperty* property : instance.EnumerateProperties()) {
        if (property->GetPropagated()) continue;
        stream.PutText(property->GetName());
        PutValue(stream, property->GetValue());
    }
    stream.Commit();
}

void TInstanceRecords::Store(TRecordReader& record, std::string& className) {
    const uint32_t number = record.TakeNumber<uint32_t>();
    className = record.TakeText();
    if (fInstances.empty()) fFirst = number;
    const uint32_t index = number - fFirst;
    if (index > fInstances.size()) throw TRecordError();
    if (index == fInstances.size()) return Add(record, className);
    if (fInstances[index] != nullptr) Update(record, *fInstances[index]);
}

void TInstanceRecords::Add(TRecordReader& record, const std::string& className) {
    fInstances.push_back(nullptr);
    if (IsSkipped(className)) return;
    TCIMInstance* const stored = Take(record, fContainer.GetClass(className)).release();
    stored->AddToContainer();  // which takes it over, whatever happens
    fInstances.back() = stored;
}

// What is stored already stays as it is if the record is refused.
void TInstanceRecords::Update(TRecordReader& record, TCIMInstance& stored) {
    const std::unique_ptr<TCIMInstance> instance = Take(record, stored.GetClass());
    instance->BuildPath().GetPath();  // which raises what storing it would
    for (const TCIMProperty* property : instance->EnumerateProperties())
        if (!property->GetPropagated()) stored.SetPropertyValue(property->GetName(), property->GetValue());
    stored.AddToContainer();
}

std::unique_ptr<TCIMInstance> TInstanceRecords::Take(TRecordReader& record, TCIMClass* cls) {
    std::unique_ptr<TCIMInstance> instance(fContainer.AllocateInstance(cls));
    while (!record.IsAtEnd()) {
        const std::string name = record.TakeText();
        instance->SetPropertyValue(name, TakeValue(record, fContainer));
    }
    instance->Validate();
    return instance;
}
