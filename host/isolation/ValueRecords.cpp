#include "isolation/ValueRecords.h"

#include <map>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMDateTime.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"

namespace {

using TType = TCIMValue::TCIMType;

constexpr int kMaxDepth = 16;  // of references whose keys are references

// The root class is the one of the empty name.
std::string NameOf(const TCIMClass* cls) {
    return cls == nullptr || cls == cls->GetContainer()->GetRootClass() ? "" : cls->GetName();
}

void PutDateTime(TRecordStream& stream, const TCIMDateTime& moment) {
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

TCIMDateTime TakeDateTime(TRecordReader& reader) {
    const bool isNull = reader.TakeNumber<uint8_t>() != 0;
    const bool isInterval = reader.TakeNumber<uint8_t>() != 0;
    const auto year = reader.TakeNumber<unsigned short>();
    const auto month = reader.TakeNumber<unsigned short>();
    const auto day = reader.TakeNumber<unsigned int>();
    const auto hour = reader.TakeNumber<unsigned short>();
    const auto minute = reader.TakeNumber<unsigned short>();
    const auto second = reader.TakeNumber<unsigned short>();
    const auto microSeconds = reader.TakeNumber<unsigned int>();
    const auto offset = reader.TakeNumber<short>();
    if (isNull) return TCIMDateTime();
    if (isInterval) return TCIMDateTime(day, hour, minute, second, microSeconds);
    return TCIMDateTime(year, month, day, hour, minute, second, microSeconds, offset);
}

void PutReference(TRecordStream& stream, const TCIMReference& reference) {
    const auto bindings = reference.EnumerateKeyBindings();
    stream.PutText(NameOf(reference.GetClass()));
    stream.PutNumber(static_cast<uint32_t>(bindings.size()));
    for (const auto& [name, value] : bindings) {
        stream.PutText(name);
        PutValue(stream, value);
    }
}

TCIMValue TakeNested(TRecordReader& reader, TContainer& container, int depth);

TCIMReference TakeReference(TRecordReader& reader, TContainer& container, int depth) {
    TCIMReference reference(&container);
    reference.SetClassName(reader.TakeText());
    std::map<const std::string, const TCIMValue> bindings;
    for (uint32_t count = reader.TakeNumber<uint32_t>(); count > 0; --count) {
        const std::string name = reader.TakeText();
        bindings.emplace(name, TakeNested(reader, container, depth));
    }
    reference.SetKeyBindings(bindings);
    return reference;
}

void PutArray(TRecordStream& stream, const std::vector<TCIMValue>& elements) {
    stream.PutNumber(static_cast<uint32_t>(elements.size()));
    for (const TCIMValue& element : elements) PutValue(stream, element);
}

TCIMValue TakeArray(TRecordReader& reader, TContainer& container, TType type, unsigned int maxSize, int depth) {
    std::vector<TCIMValue> elements;
    for (uint32_t count = reader.TakeNumber<uint32_t>(); count > 0; --count)
        elements.push_back(TakeNested(reader, container, depth));
    return TCIMValue(static_cast<TType::ECIMType>(type & ~TType::eCIMArrayFlag), maxSize, elements);
}

void PutContent(TRecordStream& stream, const TCIMValue& value) {
    switch (static_cast<TType::ECIMType>(value.GetType())) {
        case TType::eCIMBoolean:
            return stream.PutNumber(static_cast<bool>(value));
        case TType::eCIMUint8:
            return stream.PutNumber(static_cast<unsigned char>(value));
        case TType::eCIMSint8:
            return stream.PutNumber(static_cast<signed char>(value));
        case TType::eCIMUint16:
            return stream.PutNumber(static_cast<unsigned short>(value));
        case TType::eCIMSint16:
            return stream.PutNumber(static_cast<short>(value));
        case TType::eCIMUint32:
            return stream.PutNumber(static_cast<unsigned int>(value));
        case TType::eCIMSint32:
            return stream.PutNumber(static_cast<int>(value));
        case TType::eCIMUint64:
            return stream.PutNumber(static_cast<unsigned long>(value));
        case TType::eCIMSint64:
            return stream.PutNumber(static_cast<long>(value));
        case TType::eCIMReal32:
            return stream.PutNumber(static_cast<float>(value));
        case TType::eCIMReal64:
            return stream.PutNumber(static_cast<double>(value));
        case TType::eCIMString:
            return stream.PutText(static_cast<std::string>(value));
        case TType::eCIMDateTime:
            return PutDateTime(stream, static_cast<TCIMDateTime>(value));
        case TType::eCIMReference:
            return PutReference(stream, static_cast<TCIMReference>(value));
        default:
            return PutArray(stream, static_cast<std::vector<TCIMValue>&>(value));
    }
}

TCIMValue TakeContent(TRecordReader& reader, TContainer& container, TType type, unsigned int maxSize, int depth) {
    switch (static_cast<TType::ECIMType>(type)) {
        case TType::eCIMBoolean:
            return TCIMValue(reader.TakeNumber<uint8_t>() != 0);
        case TType::eCIMUint8:
            return TCIMValue(reader.TakeNumber<unsigned char>());
        case TType::eCIMSint8:
            return TCIMValue(reader.TakeNumber<signed char>());
        case TType::eCIMUint16:
            return TCIMValue(reader.TakeNumber<unsigned short>());
        case TType::eCIMSint16:
            return TCIMValue(reader.TakeNumber<short>());
        case TType::eCIMUint32:
            return TCIMValue(reader.TakeNumber<unsigned int>());
        case TType::eCIMSint32:
            return TCIMValue(reader.TakeNumber<int>());
        case TType::eCIMUint64:
            return TCIMValue(reader.TakeNumber<unsigned long>());
        case TType::eCIMSint64:
            return TCIMValue(reader.TakeNumber<long>());
        case TType::eCIMReal32:
            return TCIMValue(reader.TakeNumber<float>());
        case TType::eCIMReal64:
            return TCIMValue(reader.TakeNumber<double>());
        case TType::eCIMString:
            return TCIMValue(reader.TakeText());
        case TType::eCIMDateTime:
            return TCIMValue(TakeDateTime(reader));
        case TType::eCIMReference:
            return TCIMValue(TakeReference(reader, container, depth));
        default:
            if ((type & TType::eCIMArrayFlag) == 0) throw TRecordError();
            return TakeArray(reader, container, type, maxSize, depth);
    }
}

TCIMValue TakeNull(TRecordReader& reader, const TContainer& container, TType type, unsigned int maxSize) {
    TCIMValue value;
    value.SetNullValue(type, maxSize);
    const std::string target = reader.TakeText();
    if (!target.empty()) value.SetReferencedClass(*container.GetClass(target));
    return value;
}

TCIMValue TakeNested(TRecordReader& reader, TContainer& container, int depth) {
    if (depth == kMaxDepth) throw TRecordError();
    const TType type = static_cast<TType::ECIMType>(reader.TakeNumber<uint8_t>() & 31);
    const auto maxSize = reader.TakeNumber<unsigned int>();
    if (reader.TakeNumber<uint8_t>() != 0) return TakeNull(reader, container, type, maxSize);
    return TakeContent(reader, container, type, maxSize, depth + 1);
}

}  // namespace

void PutValue(TRecordStream& stream, const TCIMValue& value) {
    stream.PutNumber(static_cast<uint8_t>(value.GetType()));
    stream.PutNumber(value.GetMaxArraySize());
    stream.PutNumber(value.IsNull());
    if (value.IsNull())
        stream.PutText(NameOf(value.GetReferencedClass()));
    else
        PutContent(stream, value);
}

TCIMValue TakeValue(TRecordReader& reader, TContainer& container) { return TakeNested(reader, container, 0); }
