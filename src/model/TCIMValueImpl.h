#ifndef KYR_MODEL_TCIMVALUEIMPL_H
#define KYR_MODEL_TCIMVALUEIMPL_H

#include <string>
#include <vector>

#include "kyr/TCIMDateTime.h"
#include "kyr/TCIMReference.h"
#include "kyr/TCIMValue.h"
#include "model/TSmallObject.h"

/// The content of a value that is not NULL. Each conversion raises kyrStatusTypeMismatch unless a derived class
/// overrides it. The comparisons may only be called with a value of the same type that is not NULL.
class TCIMValueImpl : public TSmallObject {
public:
    virtual ~TCIMValueImpl();

// GCC warns that overriding one conversion operator hides the others, which it does not.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
    virtual operator bool() const;
    virtual operator unsigned char() const;
    virtual operator signed char() const;
    virtual operator unsigned short() const;
    virtual operator short() const;
    virtual operator unsigned int() const;
    virtual operator int() const;
    virtual operator unsigned long() const;
    virtual operator long() const;
    virtual operator float() const;
    virtual operator double() const;
    virtual operator std::string() const;
    virtual operator TCIMDateTime() const;
    virtual operator TCIMReference() const;
    virtual operator std::vector<TCIMValue>&() const;
#pragma GCC diagnostic pop
    virtual std::string ToString(unsigned char base) const = 0;
    virtual bool operator==(const TCIMValue& other) const = 0;
    virtual bool operator<(const TCIMValue& other) const = 0;

protected:
    TCIMValueImpl() = default;
    TCIMValueImpl(const TCIMValueImpl&) = default;
    TCIMValueImpl& operator=(const TCIMValueImpl&) = delete;
};

#endif
