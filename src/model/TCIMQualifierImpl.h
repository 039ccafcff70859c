#ifndef KYR_MODEL_TCIMQUALIFIERIMPL_H
#define KYR_MODEL_TCIMQUALIFIERIMPL_H

#include <atomic>

#include "kyr/TCIMQualifier.h"
#include "model/TCIMValueTransfer.h"

class TCIMQualifierImpl {
public:
    TCIMQualifierImpl(const TCIMQualifierDecl& declaration, const TCIMValue& value, TCIMQualifierDecl::EFlavor flavor)
        : fDeclaration(&declaration), fValue(value), fFlavor(flavor) {}
    /// Copies all but the mark of adoption.
    TCIMQualifierImpl(const TCIMQualifierImpl& other)
        : fDeclaration(other.fDeclaration),
          fValue(other.fValue),
          fFlavor(other.fFlavor),
          fPropagated(other.fPropagated) {}
    TCIMQualifierImpl& operator=(const TCIMQualifierImpl&) = delete;

    static TCIMQualifierImpl& Of(const TCIMQualifier& handle) { return *handle.fBody; }
    /// The value itself; GetValue copies it.
    static const TCIMValue& ValueOf(const TCIMQualifier& handle) { return handle.fBody->fValue; }
    /// True if there is a qualifier and its value is true. Raises kyrStatusTypeMismatch if it is not boolean.
    static bool IsTrue(const TCIMQualifier* qualifier);
    /// Counts the changes of the values of all qualifiers. What was made of a value at another count may be outdated.
    static unsigned long GetChangeCount() { return fgChangeCount.load(std::memory_order_relaxed); }

    const TCIMQualifierDecl& GetDeclaration() const { return *fDeclaration; }
    const TCIMValue& Value() const { return fValue; }
    TCIMQualifierDecl::EFlavor GetFlavor() const { return fFlavor; }
    bool GetPropagated() const { return fPropagated; }
    void SetPropagated(bool propagated) { fPropagated = propagated; }
    void SetValue(const TCIMValue& value);
    void SetFlavor(TCIMQualifierDecl::EFlavor flavor);
    void UnsetFlavor(TCIMQualifierDecl::EFlavor flavor);
    /// Gives a new qualifier its value, and may move the content.
    void TakeValue(TCIMValue& value) { TCIMValueTransfer::Assign(fValue, value); }
    bool IsAdopted() const { return fAdopted; }
    void SetAdopted() { fAdopted = true; }

private:
    static std::atomic<unsigned long> fgChangeCount;  // of every container, and so of every thread

    const TCIMQualifierDecl* fDeclaration;  // the container's; must outlive the qualifier
    TCIMValue fValue;
    TCIMQualifierDecl::EFlavor fFlavor;
    bool fPropagated = false;
    bool fAdopted = false;  // a carrier owns the qualifier
};

#endif
