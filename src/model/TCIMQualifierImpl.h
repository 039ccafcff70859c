#ifndef KYR_MODEL_TCIMQUALIFIERIMPL_H
#define KYR_MODEL_TCIMQUALIFIERIMPL_H

#include "kyr/TCIMQualifier.h"

class TCIMQualifierImpl {
public:
    TCIMQualifierImpl(const TCIMQualifierDecl& declaration, const TCIMValue& value, TCIMQualifierDecl::EFlavor flavor)
        : fDeclaration(&declaration), fValue(value), fFlavor(flavor) {}

    static TCIMQualifierImpl& Of(const TCIMQualifier& handle) { return *handle.fBody; }
    /// The value itself; GetValue copies it.
    static const TCIMValue& ValueOf(const TCIMQualifier& handle) { return handle.fBody->fValue; }
    /// True if there is a qualifier and its value is true. Raises kyrStatusTypeMismatch if it is not boolean.
    static bool IsTrue(const TCIMQualifier* qualifier);

    const TCIMQualifierDecl& GetDeclaration() const { return *fDeclaration; }
    const TCIMValue& Value() const { return fValue; }
    TCIMQualifierDecl::EFlavor GetFlavor() const { return fFlavor; }
    bool GetPropagated() const { return fPropagated; }
    void SetPropagated(bool propagated) { fPropagated = propagated; }
    void SetValue(const TCIMValue& value);
    void SetFlavor(TCIMQualifierDecl::EFlavor flavor);
    void UnsetFlavor(TCIMQualifierDecl::EFlavor flavor);

private:
    const TCIMQualifierDecl* fDeclaration;  // the container's; must outlive the qualifier
    TCIMValue fValue;
    TCIMQualifierDecl::EFlavor fFlavor;
    bool fPropagated = false;
};

#endif
