#ifndef KYR_MODEL_TCIMNUMERICVALUEIMPL_H
#define KYR_MODEL_TCIMNUMERICVALUEIMPL_H

#include <string>

#include "model/TCIMValueImpl.h"

/// A boolean or a number.
class TCIMNumericValueImpl final : public TCIMValueImpl {
public:
    explicit TCIMNumericValueImpl(bool value) : fType(TType::eCIMBoolean) { fNumber.fBoolean = value; }
    explicit TCIMNumericValueImpl(unsigned char value) : fType(TType::eCIMUint8) { fNumber.fUint8 = value; }
    explicit TCIMNumericValueImpl(signed char value) : fType(TType::eCIMSint8) { fNumber.fSint8 = value; }
    explicit TCIMNumericValueImpl(unsigned short value) : fType(TType::eCIMUint16) { fNumber.fUint16 = value; }
    explicit TCIMNumericValueImpl(short value) : fType(TType::eCIMSint16) { fNumber.fSint16 = value; }
    explicit TCIMNumericValueImpl(unsigned int value) : fType(TType::eCIMUint32) { fNumber.fUint32 = value; }
    explicit TCIMNumericValueImpl(int value) : fType(TType::eCIMSint32) { fNumber.fSint32 = value; }
    explicit TCIMNumericValueImpl(unsigned long value) : fType(TType::eCIMUint64) { fNumber.fUint64 = value; }
    explicit TCIMNumericValueImpl(long value) : fType(TType::eCIMSint64) { fNumber.fSint64 = value; }
    explicit TCIMNumericValueImpl(float value) : fType(TType::eCIMReal32) { fNumber.fReal32 = value; }
    explicit TCIMNumericValueImpl(double value) : fType(TType::eCIMReal64) { fNumber.fReal64 = value; }

    operator bool() const override;
    operator unsigned char() const override;
    operator signed char() const override;
    operator unsigned short() const override;
    operator short() const override;
    operator unsigned int() const override;
    operator int() const override;
    operator unsigned long() const override;
    operator long() const override;
    operator float() const override;
    operator double() const override;
    std::string ToString(unsigned char base) const override;
    bool operator==(const TCIMValue& other) const override;
    bool operator<(const TCIMValue& other) const override;

private:
    using TType = TCIMValue::TCIMType;
    union TNumber {
        bool fBoolean;
        unsigned char fUint8;
        signed char fSint8;
        unsigned short fUint16;
        short fSint16;
        unsigned int fUint32;
        int fSint32;
        unsigned long fUint64 = 0;
        long fSint64;
        float fReal32;
        double fReal64;
    };

    template <typename T>
    T Read(T TNumber::*member, TType::ECIMType type) const;
    /// Calls visit with the pointer to the union member of fType.
    template <typename TVisitor>
    auto Visit(TVisitor visit) const;

    TType fType;
    TNumber fNumber;
};

#endif
