#ifndef KYR_MODEL_TCIMNUMERICVALUEIMPL_H
#define KYR_MODEL_TCIMNUMERICVALUEIMPL_H

#include <string>

#include "model/TCIMValueImpl.h"
#include "model/TCIMValueTransfer.h"

/// A boolean or a number.
template <typename T>
class TCIMNumericValueImpl final : public TCIMValueImpl {
public:
    explicit TCIMNumericValueImpl(T value) : fNumber(value) {}

    operator T() const override { return fNumber; }
    std::string ToString(unsigned char base) const override;
    bool operator==(const TCIMValue& other) const override { return fNumber == NumberOf(other); }
    bool operator<(const TCIMValue& other) const override { return fNumber < NumberOf(other); }

private:
    static T NumberOf(const TCIMValue& value) { return TCIMValueTransfer::BodyOf<TCIMNumericValueImpl>(value).fNumber; }

    T fNumber;
};

#endif
