#include "model/TCIMArrayValueImpl.h"

#include "kyr/TKYRException.h"
#include "model/TCIMValueTransfer.h"
#include "model/TypeName.h"
#include "platform/CoreLog.h"

std::vector<TCIMValue>& TCIMArrayValueImpl::ElementsOf(const TCIMValue& value) {
    return TCIMValueTransfer::BodyOf<TCIMArrayValueImpl>(value).fElements;
}

void TCIMArrayValueImpl::RequireElementType(TCIMValue::TCIMType type) const {
    for (const TCIMValue& element : fElements) {
        if (element.GetType() == type) continue;
        LogAndThrow(kyrStatusInvalidProperty, "ERROR: Attempting to create array of type " + TypeNameForLog(type) +
                                                  ", but element is of type " + TypeNameForLog(element.GetType()) +
                                                  ".");
    }
}

std::string TCIMArrayValueImpl::ToString(unsigned char base) const {
    std::string text = "{ ";
    const char* separator = "";
    for (const TCIMValue& element : fElements) {
        text.append(separator).append(element.ToString(base));
        separator = ", ";
    }
    return text.append(" }");
}

bool TCIMArrayValueImpl::operator<(const TCIMValue&) const { throw TKYRException(kyrStatusNotImplemented); }
