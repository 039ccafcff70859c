#ifndef KYR_MODEL_TCIMDATETIMEVALUEIMPL_H
#define KYR_MODEL_TCIMDATETIMEVALUEIMPL_H

#include <string>

#include "model/TCIMValueImpl.h"

class TCIMDateTimeValueImpl final : public TCIMValueImpl {
public:
    explicit TCIMDateTimeValueImpl(const TCIMDateTime& dateTime) : fDateTime(dateTime) {}

    static const TCIMDateTime& DateTimeOf(const TCIMValue& value);

    operator TCIMDateTime() const override { return fDateTime; }
    std::string ToString(unsigned char) const override { return fDateTime.ToString(); }
    bool operator==(const TCIMValue& other) const override { return fDateTime == DateTimeOf(other); }
    bool operator<(const TCIMValue& other) const override { return fDateTime < DateTimeOf(other); }

private:
    TCIMDateTime fDateTime;
};

#endif
