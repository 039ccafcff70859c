#ifndef KYR_MODEL_TCIMREFERENCEVALUEIMPL_H
#define KYR_MODEL_TCIMREFERENCEVALUEIMPL_H

#include <string>

#include "model/TCIMValueImpl.h"

class TCIMReferenceValueImpl final : public TCIMValueImpl {
public:
    /// Looks the target up now, if it exists already; a later change of its keys then does not matter.
    explicit TCIMReferenceValueImpl(const TCIMReference& reference);
    TCIMReferenceValueImpl(const TCIMReferenceValueImpl& other) : TCIMReferenceValueImpl(other.fReference) {}

    static const TCIMReference& ReferenceOf(const TCIMValue& value);
    /// What a copy of the value would do.
    static void LookUpTarget(const TCIMValue& value);

    operator TCIMReference() const override { return fReference; }
    std::string ToString(unsigned char) const override { return fReference.GetPath(); }
    bool operator==(const TCIMValue& other) const override { return fReference == ReferenceOf(other); }
    bool operator<(const TCIMValue& other) const override { return fReference < ReferenceOf(other); }

private:
    TCIMReference fReference;
};

#endif
