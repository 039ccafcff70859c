#include "model/TCIMReferenceValueImpl.h"

#include "kyr/TKYRException.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TCIMValueTransfer.h"

namespace {
const TCIMReference& WithTarget(const TCIMReference& reference) {
    try {
        TCIMReferenceImpl::Of(reference).FindCIMElement();
    } catch (const TKYRException&) {
        // It cannot be looked up yet; that is tried again when the element is asked for.
    }
    return reference;
}
}  // namespace

TCIMReferenceValueImpl::TCIMReferenceValueImpl(const TCIMReference& reference) : fReference(WithTarget(reference)) {}

const TCIMReference& TCIMReferenceValueImpl::ReferenceOf(const TCIMValue& value) {
    return TCIMValueTransfer::BodyOf<TCIMReferenceValueImpl>(value).fReference;
}

void TCIMReferenceValueImpl::LookUpTarget(const TCIMValue& value) { WithTarget(ReferenceOf(value)); }
