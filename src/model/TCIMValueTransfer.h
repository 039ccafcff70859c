#ifndef KYR_MODEL_TCIMVALUETRANSFER_H
#define KYR_MODEL_TCIMVALUETRANSFER_H

#include <vector>

#include "kyr/TCIMValue.h"

/// Moves values inside the core. TCIMValue itself is only copied, because hosts rely on the checks and failures of its
/// assignment; a value may be moved here only after those checks.
class TCIMValueTransfer {
public:
    /// Moves source into target, which must be as default-constructed. Source becomes a NULL without a type. Not
    /// allowed for a source of type eCIMNone or eCIMChar, because copying it would raise.
    static void TakeOver(TCIMValue& target, TCIMValue& source);
    /// Like `target = source` with all its checks and failures, but moves the content of source.
    static void Assign(TCIMValue& target, TCIMValue& source);
    /// Like `target.Set(type, maxArraySize, elements)`, but moves the elements.
    static void SetArray(TCIMValue& target, TCIMValue::TCIMType type, unsigned int maxArraySize,
                         std::vector<TCIMValue>& elements);

    /// Like TakeOver, for a target that has had any value.
    static void Replace(TCIMValue& target, TCIMValue& source);
    /// Makes a default-constructed value one that no caller can make, which stands for none. Replace makes it an
    /// ordinary one; it must not be copied.
    static void MakeVoid(TCIMValue& value) { value.fReferencedClass = VoidClass(); }
    static bool IsVoid(const TCIMValue& value) { return value.fReferencedClass == VoidClass(); }

    /// Gives target the type and the body, which it then owns; a null body makes a NULL value.
    static void Install(TCIMValue& target, TCIMValue::TCIMType type, TCIMValueImpl* body);
    /// The body of a value that is not NULL and whose type belongs to TBody; not checked.
    template <typename TBody>
    static const TBody& BodyOf(const TCIMValue& value) {
        return static_cast<const TBody&>(*value.fBody);
    }

private:
    /// The address of no class.
    static TCIMClass* VoidClass() { return reinterpret_cast<TCIMClass*>(&fgVoidClass); }

    static void* fgVoidClass;
};

#endif
