#include "isolation/TapeValues.h"

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

void PutDateTime(TTape& tape, const TCIMDateTime& moment) {
    tape.PutNumber(moment.IsNull());
    tape.PutNumber(moment.IsInterval());
    tape.PutNumber(moment.GetYear());
    tape.PutNumber(moment.GetMonth());
    tape.PutNumber(moment.GetDay());
    tape.PutNumber(moment.GetHour());
    tape.PutNumber(moment.GetMinute());
    tape.PutNumber(moment.GetSecond());
    tape.PutNumber(moment.GetMicroSeconds());
    tape.PutNumber(moment.GetUTCOffset());
}

TCIMDateTime TakeDateTime(TTapeReader& reader) {
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

void PutReference(TTape& tape, const TCIMReference& reference) {
    const auto bindings = reference.EnumerateKeyBindings();
    tape.PutText(NameOf(reference.GetClass()));
    tape.PutNumber(static_cast<uint32_t>(bindings.size()));
    for (const auto& [name, value] : bindings) {
        tape.PutText(name);
        PutValue(tape, value);
    }
}

TCIMValue TakeNested(TTapeReader& reader, TContainer& container, int depth);

TCIMReference TakeReference(TTapeReader& reader, TContainer& container, int depth) {
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

void PutArray(TTape& tape, const std::vector<TCIMValue>& elements) {
    tape.PutNumber(static_cast<uint32_t>(elements.size()));
    for (const TCIMValue& element : elements) PutValue(tape, element);
}

TCIMValue TakeArray(TTapeReader& reader, TContainer& container, TType type, unsigned int maxSize, int depth) {
    std::vector<TCIMValue> elements;
    for (uint32_t count = reader.TakeNumber<uint32_t>(); count > 0; --count)
        elements.push_back(TakeNested(reader, container, depth));
    return TCIMValue(static_cast<TType::ECIMType>(type & ~TType::eCIMArrayFlag), maxSize, elements);
}

void PutContent(TTape& tape, const TCIMValue& value) {
    switch (static_cast<TType::ECIMType>(value.GetType())) {
        case TType::eCIMBoolean:
            return tape.PutNumber(static_cast<bool>(value));
        case TType::eCIMUint8:
            return tape.PutNumber(static_cast<unsigned char>(value));
        case TType::eCIMSint8:
            return tape.PutNumber(static_cast<signed char>(value));
        case TType::eCIMUint16:
            return tape.PutNumber(static_cast<unsigned short>(value));
        case TType::eCIMSint16:
            return tape.PutNumber(static_cast<short>(value));
        case TType::eCIMUint32:
            return tape.PutNumber(static_cast<unsigned int>(value));
        case TType::eCIMSint32:
            return tape.PutNumber(static_cast<int>(value));
        case TType::eCIMUint64:
            return tape.PutNumber(static_cast<unsigned long>(value));
        case TType::eCIMSint64:
            return tape.PutNumber(static_cast<long>(value));
        case TType::eCIMReal32:
            return tape.PutNumber(static_cast<float>(value));
        case TType::eCIMReal64:
            return tape.PutNumber(static_cast<double>(value));
        case TType::eCIMString:
            return tape.PutText(static_cast<std::string>(value));
        case TType::eCIMDateTime:
            return PutDateTime(tape, static_cast<TCIMDateTime>(value));
        case TType::eCIMReference:
            return PutReference(tape, static_cast<TCIMReference>(value));
        default:
            return PutArray(tape, static_cast<std::vector<TCIMValue>&>(value));
    }
}

TCIMValue TakeContent(TTapeReader& reader, TContainer& container, TType type, unsigned int maxSize, int depth) {
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
            if ((type & TType::eCIMArrayFlag) == 0) throw TTapeError();
            return TakeArray(reader, container, type, maxSize, depth);
    }
}

TCIMValue TakeNull(TTapeReader& reader, const TContainer& container, TType type, unsigned int maxSize) {
    TCIMValue value;
    value.SetNullValue(type, maxSize);
    const std::string target = reader.TakeText();
    if (!target.empty()) value.SetReferencedClass(*container.GetClass(target));
    return value;
}

TCIMValue TakeNested(TTapeReader& reader, TContainer& container, int depth) {
    if (depth == kMaxDepth) throw TTapeError();
    const TType type = static_cast<TType::ECIMType>(reader.TakeNumber<uint8_t>() & 31);
    const auto maxSize = reader.TakeNumber<unsigned int>();
    if (reader.TakeNumber<uint8_t>() != 0) return TakeNull(reader, container, type, maxSize);
    return TakeContent(reader, container, type, maxSize, depth + 1);
}

}  // namespace

void PutValue(TTape& tape, const TCIMValue& value) {
    tape.PutNumber(static_cast<uint8_t>(value.GetType()));
    tape.PutNumber(value.GetMaxArraySize());
    tape.PutNumber(value.IsNull());
    if (value.IsNull())
        tape.PutText(NameOf(value.GetReferencedClass()));
    else
        PutContent(tape, value);
}

TCIMValue TakeValue(TTapeReader& reader, TContainer& container) { return TakeNested(reader, container, 0); }
