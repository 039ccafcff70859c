#include "model/TCIMReferenceValueImpl.h"

#include "kyr/TKYRException.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TCIMValueTransfer.h"

namespace {
const TCIMReference& LookForTarget(const TCIMReference& reference) {
    try {
        TCIMReferenceImpl::Of(reference).FindCIMElement();
    } catch (const TKYRException&) {
        // It cannot be looked for yet; the reference looks again when it is asked.
    }
    return reference;
}
}  // namespace

TCIMReferenceValueImpl::TCIMReferenceValueImpl(const TCIMReference& reference) : fReference(LookForTarget(reference)) {}

const TCIMReference& TCIMReferenceValueImpl::ReferenceOf(const TCIMValue& value) {
    return TCIMValueTransfer::BodyOf<TCIMReferenceValueImpl>(value).fReference;
}
