#include "model/TCIMStringValueImpl.h"

#include "model/TCIMValueTransfer.h"

const std::string& TCIMStringValueImpl::TextOf(const TCIMValue& value) {
    return TCIMValueTransfer::BodyOf<TCIMStringValueImpl>(value).fText;
}
