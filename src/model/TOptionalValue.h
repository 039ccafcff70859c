#ifndef KYR_MODEL_TOPTIONALVALUE_H
#define KYR_MODEL_TOPTIONALVALUE_H

#include "kyr/TCIMValue.h"
#include "model/TCIMValueTransfer.h"

/// A value or none, in the room of a value: a flag beside it would take eight bytes in each property.
class TOptionalValue {
public:
    TOptionalValue() { TCIMValueTransfer::MakeVoid(fValue); }

    bool HasValue() const { return !TCIMValueTransfer::IsVoid(fValue); }
    /// Without a value, one that has no type.
    const TCIMValue& operator*() const { return fValue; }
    void Reset() {
        TCIMValue none;
        TCIMValueTransfer::Replace(fValue, none);
        TCIMValueTransfer::MakeVoid(fValue);
    }
    /// Moves the source here, as far as TCIMValueTransfer::TakeOver allows.
    void Take(TCIMValue& source) { TCIMValueTransfer::Replace(fValue, source); }

private:
    TCIMValue fValue;
};

#endif
