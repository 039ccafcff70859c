// Values made from text: two lines with a value each, in the form of ReadValueLine; the third line is an entry of a
// ValueMap.
#include <cfloat>
#include <cmath>
#include <cstdint>

#include "kyr/TContainer.h"
#include "support/FuzzSupport.h"
#include "support/NumberRoads.h"

namespace {

using TType = TCIMValue::TCIMType;

bool IsNumber(TType type) { return type >= TType::eCIMBoolean && type <= TType::eCIMReal64; }
bool IsReal(TType type) { return type == TType::eCIMReal32 || type == TType::eCIMReal64; }
bool IsUnsigned(TType type) {
    return type == TType::eCIMUint8 || type == TType::eCIMUint16 || type == TType::eCIMUint32 ||
           type == TType::eCIMUint64;
}

/// True for a value so close to 0 that it may have less than six significant digits: its text need not read back the
/// same.
bool IsDenormal(const TCIMValue& value) {
    const double number = value.GetType() == TType::eCIMReal32 ? static_cast<double>(static_cast<float>(value))
                                                               : static_cast<double>(value);
    const double least = value.GetType() == TType::eCIMReal32 ? static_cast<double>(FLT_MIN) : DBL_MIN;
    return number != 0 && std::fabs(number) < 2 * least;
}

void CheckTextStatus(TType type, const std::string& text, TContainer& container) {
    std::string copy = text;
    const kyrStatusCode status = StatusOf([&] { TCIMValue(type, copy, container); });
    if (type == TType::eCIMDateTime)
        return Require(status == kyrStatusOK || status == kyrStatusInvalidDateTime, "a date-time is good or bad");
    if (type == TType::eCIMReference) return Require(status == kyrStatusNotImplemented, "no reference comes from text");
    Require(status == (HasTextForm(type) ? kyrStatusOK : kyrStatusTypeMismatch), "a type takes any text or none");
}

kyrStatusCode PrintingStatus(const TCIMValue& value, unsigned char base) {
    const TType type = value.GetType();
    if (value.IsNull()) return kyrStatusValueIsNULL;
    if (!IsNumber(type) || base == 10) return kyrStatusOK;
    const bool isSuited = (base == 8 || base == 16) && (IsUnsigned(type) || type == TType::eCIMBoolean);
    return isSuited ? kyrStatusOK : kyrStatusNotSupported;
}

void CheckReadBack(const TCIMValue& value, unsigned char base, TContainer& container) {
    const std::string printed = value.ToString(base);
    const char* const prefix = !IsUnsigned(value.GetType()) || base == 10 ? "" : base == 16 ? "0x" : "0";
    std::string text = prefix + printed;
    const TCIMValue read(value.GetType(), text, container);
    if (!IsReal(value.GetType())) return Require(read == value, "what was printed reads as the same value");
    if (!IsDenormal(value)) Require(read.ToString(10) == printed, "a real's text reads as a real of the same text");
}

void CheckPrinting(const TCIMValue& value, TContainer& container) {
    if (value.IsArray()) return;
    for (const unsigned char base : {8, 10, 16, 2, 0, 255}) {
        const kyrStatusCode status = StatusOf([&] { value.ToString(base); });
        Require(status == PrintingStatus(value, base), "type and base decide whether a value can be printed");
        if (status == kyrStatusOK) CheckReadBack(value, base, container);
    }
}

void CheckOrder(const TCIMValue& a, const TCIMValue& b) {
    bool equal = false;
    bool less = false;
    bool greater = false;
    const kyrStatusCode equality = StatusOf([&] { equal = a == b; });
    Require(equality == StatusOf([&] { Require((b == a) == equal, "equality is symmetric"); }),
            "equality fails the same from both sides");
    const kyrStatusCode order = StatusOf([&] { less = a < b; });
    Require(order == StatusOf([&] { greater = b < a; }), "order fails the same from both sides");
    Require(!less || !greater, "of two values one is less");
    if (equality == kyrStatusOK) {
        Require((a != b) != equal, "unequal is not equal");
        Require(!equal || (!less && !greater), "equal values are not less");
    }
    if (order == kyrStatusOK) Require((a >= b) != less, "greater or equal is not less");
    if (equality != kyrStatusOK || order != kyrStatusOK) return;
    Require((a <= b) == (equal || less), "less or equal is one of both");
    Require((a > b) == (!equal && !less), "greater is neither");
}

void CheckAssignment(const TCIMValue& from, const TCIMValue& over) {
    TCIMValue target(over);
    switch (StatusOf([&] { target = from; })) {
        case kyrStatusOK:
            return Require(target == from, "a value is equal to the one assigned");
        case kyrStatusInvalidDateTime:
            return Require(target == over, "an assignment that cannot compare changes nothing");
        default:
            Require(target.IsNull() && target.GetType() == from.GetType(), "the data is lost for a type without any");
    }
}

void CheckArray(const TCIMValue& a, const TCIMValue& b) {
    TCIMValue array;
    const TType type = a.GetType();
    const kyrStatusCode status = StatusOf([&] { array.Set(type, 0, {a, b}); });
    const bool isUniform = !a.IsArray() && b.GetType() == type;
    Require(status == (isUniform ? kyrStatusOK : kyrStatusInvalidProperty), "elements have one type");
    if (!isUniform || a.IsNull() || b.IsNull() || !HasTextForm(type)) return;
    Require(array.ToString(10) == "{ " + a.ToString(10) + ", " + b.ToString(10) + " }", "an array shows its elements");
}

bool HasCopies(const TCIMValue& value) {
    return StatusOf([&] { TCIMValue copy(value); }) == kyrStatusOK;
}

void CheckPair(const TCIMValue& a, const TCIMValue& b) {
    CheckOrder(a, a);
    CheckOrder(a, b);
    if (!HasCopies(a) || !HasCopies(b)) return;
    CheckAssignment(a, b);
    CheckAssignment(b, a);
    CheckArray(a, b);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const TRunLog log;
    TContainer container;
    TByteReader input(data, size);
    const std::string first = input.Line();
    const std::string second = input.Line();
    Require(IsReadAsByAStream(input.Line()), "both roads to a number agree");
    if (first.empty()) return 0;
    Require(IsReadAsByAStream(first.substr(1)), "both roads to a number agree");
    CheckTextStatus(TypeOfLine(first), first.substr(1), container);
    StatusOf([&] {
        const TCIMValue a = ReadValueLine(first, container);
        CheckPrinting(a, container);
        const TCIMValue b = ReadValueLine(second, container);
        CheckPair(a, b);
    });
    return 0;
}
