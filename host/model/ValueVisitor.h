#ifndef KYR_HOST_MODEL_VALUEVISITOR_H
#define KYR_HOST_MODEL_VALUEVISITOR_H

#include <string>
#include <type_traits>
#include <vector>

#include "kyr/TCIMDateTime.h"
#include "kyr/TCIMReference.h"
#include "kyr/TCIMValue.h"

// The one place that knows which C++ type belongs to which CIM type.

/// Stands for the C++ type in which values of a CIM type give their content; void for types without values.
template <typename T>
struct TContentType {
    using TContent = T;
};

/// Calls the visitor with the content type of a CIM type. All overloads of the visitor must return the same type.
template <typename TVisitor>
auto VisitType(TCIMValue::TCIMType type, TVisitor&& visitor) {
    using CIM = TCIMValue::TCIMType;
    if ((type & CIM::eCIMArrayFlag) != 0) return visitor(TContentType<std::vector<TCIMValue>&>());
    // clang-format off
    switch (static_cast<CIM::ECIMType>(type)) {
        case CIM::eCIMBoolean: return visitor(TContentType<bool>());
        case CIM::eCIMUint8: return visitor(TContentType<unsigned char>());
        case CIM::eCIMSint8: return visitor(TContentType<signed char>());
        case CIM::eCIMUint16: return visitor(TContentType<unsigned short>());
        case CIM::eCIMSint16: return visitor(TContentType<short>());
        case CIM::eCIMUint32: return visitor(TContentType<unsigned int>());
        case CIM::eCIMSint32: return visitor(TContentType<int>());
        case CIM::eCIMUint64: return visitor(TContentType<unsigned long>());
        case CIM::eCIMSint64: return visitor(TContentType<long>());
        case CIM::eCIMReal32: return visitor(TContentType<float>());
        case CIM::eCIMReal64: return visitor(TContentType<double>());
        case CIM::eCIMString: return visitor(TContentType<std::string>());
        case CIM::eCIMDateTime: return visitor(TContentType<TCIMDateTime>());
        case CIM::eCIMReference: return visitor(TContentType<TCIMReference>());
        default: return visitor(TContentType<void>());
    }
    // clang-format on
}

/// Calls the visitor with the content of a value that is not NULL.
template <typename TVisitor>
void VisitContent(const TCIMValue& value, TVisitor&& visitor) {
    VisitType(value.GetType(), [&](auto type) {
        using T = typename decltype(type)::TContent;
        if constexpr (!std::is_void_v<T>) visitor(static_cast<T>(value));
    });
}

/// Joins functions into one visitor.
template <typename... TFunctions>
struct TOverloads : TFunctions... {
    using TFunctions::operator()...;
};
template <typename... TFunctions>
TOverloads(TFunctions...) -> TOverloads<TFunctions...>;

#endif
