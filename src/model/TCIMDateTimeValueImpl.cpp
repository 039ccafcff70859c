#include "model/TCIMDateTimeValueImpl.h"

#include "model/TCIMValueTransfer.h"

const TCIMDateTime& TCIMDateTimeValueImpl::DateTimeOf(const TCIMValue& value) {
    return TCIMValueTransfer::BodyOf<TCIMDateTimeValueImpl>(value).fDateTime;
}
