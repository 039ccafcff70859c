#ifndef KYR_MODEL_TCIMVALUETRANSFER_H
#define KYR_MODEL_TCIMVALUETRANSFER_H

#include <vector>

#include "kyr/TCIMValue.h"

/// The core's own moves of temporaries. TCIMValue has no move operations in its interface, because its assignment has
/// gates and failures that hosts rely on; what is moved here has passed them already.
class TCIMValueTransfer {
public:
    /// Moves source into target, a value made by its default constructor and not touched since. Source is then a
    /// NULL without a type. Never for a source of type eCIMNone or eCIMChar, whose copying raises.
    static void TakeOver(TCIMValue& target, TCIMValue& source);
    /// What `target = source` does, gates and failures included, but without copying: source's content is used up.
    static void Assign(TCIMValue& target, TCIMValue& source);
    /// What `target.Set(type, maxArraySize, elements)` does, but the elements are used up.
    static void SetArray(TCIMValue& target, TCIMValue::TCIMType type, unsigned int maxArraySize,
                         std::vector<TCIMValue>& elements);

    /// Makes target a value of the type with the body, which it owns from then on; null makes a NULL.
    static void Install(TCIMValue& target, TCIMValue::TCIMType type, TCIMValueImpl* body);
    /// The body of a value that is not NULL and whose type says that its body is a TBody.
    template <typename TBody>
    static const TBody& BodyOf(const TCIMValue& value) {
        return static_cast<const TBody&>(*value.fBody);
    }
};

#endif
