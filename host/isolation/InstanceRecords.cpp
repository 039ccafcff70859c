#include "isolation/InstanceRecords.h"

#include <algorithm>
#include <map>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/ValueVisitor.h"

namespace {

using CIM = TCIMValue::TCIMType;

constexpr int kMaxDepth = 16;  // of references whose keys are references

// What an instance takes in a saved file: never less than it really does, so that a file has room for all that the host
// stores. Declared properties stand for the memory that they take even without a value.
constexpr size_t kInstanceSize = 65;
constexpr size_t kDeclaredSize = 8;
constexpr size_t kPropertySize = 46;
constexpr size_t kValueSize = 40;
constexpr size_t kArraySize = 24;
constexpr size_t kReferenceSize = 100;
constexpr size_t kBindingSize = 54;
constexpr size_t kEscapeSize = 5;

void Charge(size_t& room, size_t size) {
    if (size > room) throw TNoRoom();
    room -= size;
}

size_t WrittenSize(const std::string& text) {
    const auto isEscaped = [](unsigned char c) { return c < ' ' || c == '<' || c == '&' || c == '>' || c == 0x7f; };
    return text.size() + kEscapeSize * static_cast<size_t>(std::count_if(text.begin(), text.end(), isEscaped));
}

// The root class is the one of the empty name.
std::string NameOf(const TCIMClass* cls) {
    return cls == nullptr || cls == cls->GetContainer()->GetRootClass() ? "" : cls->GetName();
}

void PutValue(TRecordStream& stream, const TCIMValue& value);

template <typename TNumber>
void PutContent(TRecordStream& stream, TNumber number) {
    stream.PutNumber(number);
}

void PutContent(TRecordStream& stream, const std::string& text) { stream.PutText(text); }

void PutContent(TRecordStream& stream, const TCIMDateTime& moment) {
    stream.PutNumber(moment.IsNull());
    stream.PutNumber(moment.IsInterval());
    stream.PutNumber(moment.GetYear());
    stream.PutNumber(moment.GetMonth());
    stream.PutNumber(moment.GetDay());
    stream.PutNumber(moment.GetHour());
    stream.PutNumber(moment.GetMinute());
    stream.PutNumber(moment.GetSecond());
    stream.PutNumber(moment.GetMicroSeconds());
    stream.PutNumber(moment.GetUTCOffset());
}

void PutContent(TRecordStream& stream, const TCIMReference& reference) {
    const auto bindings = reference.EnumerateKeyBindings();
    stream.PutText(NameOf(reference.GetClass()));
    stream.PutNumber(static_cast<uint32_t>(bindings.size()));
    for (const auto& [name, value] : bindings) {
        stream.PutText(name);
        PutValue(stream, value);
    }
}

void PutContent(TRecordStream& stream, const std::vector<TCIMValue>& elements) {
    stream.PutNumber(static_cast<uint32_t>(elements.size()));
    for (const TCIMValue& element : elements) PutValue(stream, element);
}

void PutValue(TRecordStream& stream, const TCIMValue& value) {
    stream.PutNumber(static_cast<uint8_t>(value.GetType()));
    stream.PutNumber(value.GetMaxArraySize());
    stream.PutNumber(value.IsNull());
    if (value.IsNull()) return stream.PutText(NameOf(value.GetReferencedClass()));
    VisitContent(value, [&](const auto& content) { PutContent(stream, content); });
}

/// Takes one value off a record. References are to classes of the container.
class TValueReader {
public:
    TValueReader(TRecordReader& record, TContainer& container, size_t& room)
        : fRecord(record), fContainer(container), fRoom(room) {}

    void Charge(size_t size) { ::Charge(fRoom, size); }

    /// Raises TRecordError, TNoRoom, or a status of the core.
    TCIMValue TakeValue() {
        if (fDepth == kMaxDepth) throw TRecordError();
        Charge(kValueSize);
        const CIM type = static_cast<CIM::ECIMType>(fRecord.TakeNumber<uint8_t>() & kTypeBits);
        const auto maxSize = fRecord.TakeNumber<unsigned int>();
        if (fRecord.TakeNumber<uint8_t>() != 0) return TakeNull(type, maxSize);
        const TNesting nesting(fDepth);
        return TakeContent(type, maxSize);  // through no variable, which would be a copy of a whole array
    }

private:
    static constexpr int kTypeBits = 31;
    static constexpr size_t kLeastBytes = 6;  // of a value on a record

    /// Counts a value as one within which others are read.
    class TNesting {
    public:
        explicit TNesting(int& depth) : fDepth(++depth) {}
        ~TNesting() { --fDepth; }
        TNesting(const TNesting&) = delete;
        TNesting& operator=(const TNesting&) = delete;

    private:
        int& fDepth;
    };

    TCIMValue TakeNull(CIM type, unsigned int maxSize) {
        TCIMValue value;
        value.SetNullValue(type, maxSize);
        const std::string target = TakeText();
        if (!target.empty()) value.SetReferencedClass(*fContainer.GetClass(target));
        return value;
    }

    TCIMValue TakeContent(CIM type, unsigned int maxSize) {
        return VisitType(
            type, TOverloads{
                      [](TContentType<void>) -> TCIMValue { throw TRecordError(); },
                      [&](TContentType<bool>) { return TCIMValue(fRecord.TakeNumber<uint8_t>() != 0); },
                      [&](TContentType<std::string>) { return TCIMValue(TakeTextContent()); },
                      [&](TContentType<TCIMDateTime>) { return TCIMValue(TakeDateTime()); },
                      [&](TContentType<TCIMReference>) { return TCIMValue(TakeReference()); },
                      [&](TContentType<std::vector<TCIMValue>&>) { return TakeArray(type, maxSize); },
                      [&](auto number) { return TCIMValue(fRecord.TakeNumber<typename decltype(number)::TContent>()); },
                  });
    }

    std::string TakeText() {
        std::string text = fRecord.TakeText();
        Charge(WrittenSize(text));
        return text;
    }

    // Until the next one is taken.
    const std::string& TakeTextContent() {
        fRecord.TakeText(fText);
        Charge(WrittenSize(fText));
        return fText;
    }

    TCIMDateTime TakeDateTime() {
        const bool isNull = fRecord.TakeNumber<uint8_t>() != 0;
        const bool isInterval = fRecord.TakeNumber<uint8_t>() != 0;
        const auto year = fRecord.TakeNumber<unsigned short>();
        const auto month = fRecord.TakeNumber<unsigned short>();
        const auto day = fRecord.TakeNumber<unsigned int>();
        const auto hour = fRecord.TakeNumber<unsigned short>();
        const auto minute = fRecord.TakeNumber<unsigned short>();
        const auto second = fRecord.TakeNumber<unsigned short>();
        const auto microSeconds = fRecord.TakeNumber<unsigned int>();
        const auto offset = fRecord.TakeNumber<short>();
        if (isNull) return TCIMDateTime();
        if (isInterval) return TCIMDateTime(day, hour, minute, second, microSeconds);
        return TCIMDateTime(year, month, day, hour, minute, second, microSeconds, offset);
    }

    TCIMReference TakeReference() {
        TCIMReference reference(&fContainer);
        reference.SetClassName(TakeText());
        Charge(kReferenceSize);
        std::map<const std::string, const TCIMValue> bindings;
        for (uint32_t count = fRecord.TakeNumber<uint32_t>(); count > 0; --count) {
            Charge(kBindingSize);
            std::string name = TakeText();
            bindings.emplace(std::move(name), TakeValue());
        }
        reference.SetKeyBindings(std::move(bindings));
        return reference;
    }

    TCIMValue TakeArray(CIM type, unsigned int maxSize) {
        Charge(kArraySize);
        uint32_t count = fRecord.TakeNumber<uint32_t>();
        std::vector<TCIMValue> elements;
        elements.reserve(std::min<size_t>(count, fRecord.BytesLeft() / kLeastBytes));
        for (; count > 0; --count) elements.push_back(TakeValue());
        return TCIMValue(static_cast<CIM::ECIMType>(type & ~CIM::eCIMArrayFlag), maxSize, elements);
    }

    TRecordReader& fRecord;
    TContainer& fContainer;
    size_t& fRoom;
    std::string fText;
    int fDepth = 0;
};

}  // namespace

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
    const size_t count = fInstances.size(), room = fRoom;
    try {
        if (index == fInstances.size()) return Add(record, className);
        if (fInstances[index].instance != nullptr) Update(record, fInstances[index]);
    } catch (const TNoRoom&) {
        fInstances.resize(count);
        fRoom = room;
        throw;
    }
}

void TInstanceRecords::Add(TRecordReader& record, const std::string& className) {
    fInstances.push_back({nullptr, 0});
    if (IsSkipped(className)) return;
    TCIMInstance* const stored = Take(record, fContainer.GetClass(className)).release();
    stored->AddToContainer();  // which takes it over, whatever happens
    fInstances.back() = {stored, 1};
    ++fCount;
}

// What is stored already stays as it is if the record is refused. The new values are saved as often as it is listed.
void TInstanceRecords::Update(TRecordReader& record, TStored& listed) {
    TCIMInstance& stored = *listed.instance;
    const size_t room = fRoom;
    const std::unique_ptr<TCIMInstance> instance = Take(record, stored.GetClass());
    Charge(fRoom, (room - fRoom) * listed.times);
    instance->BuildPath().GetPath();  // which raises what storing it would
    for (const TCIMProperty* property : instance->EnumerateProperties())
        if (!property->GetPropagated()) stored.SetPropertyValue(property->GetName(), property->GetValue());
    stored.AddToContainer();
    ++listed.times;
}

std::unique_ptr<TCIMInstance> TInstanceRecords::Take(TRecordReader& record, TCIMClass* cls) {
    TValueReader value(record, fContainer, fRoom);
    value.Charge(SizeOfEmpty(*cls));
    std::unique_ptr<TCIMInstance> instance(fContainer.AllocateInstance(cls));
    for (std::string name; !record.IsAtEnd();) {
        record.TakeText(name);
        value.Charge(kPropertySize + name.size());
        instance->SetPropertyValue(name, value.TakeValue());
    }
    instance->Validate();
    return instance;
}

size_t TInstanceRecords::SizeOfEmpty(const TCIMClass& cls) {
    size_t& size = fSizes[&cls];
    if (size == 0) size = kInstanceSize + cls.GetName().size() + kDeclaredSize * cls.EnumeratePropertyDecls().size();
    return size;
}
