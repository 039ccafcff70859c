#ifndef ICIMALLOWQUALIFIERS_H
#define ICIMALLOWQUALIFIERS_H

#include <string>
#include <vector>

#include "kyr/kyrExport.h"

class TCIMQualifier;

/// What carries qualifiers: a class or a property declaration. Names are found without regard to case; a malformed
/// name raises kyrStatusInvalidCIMName, with "CIM name '...' is invalid" in the log. The scope of a qualifier's
/// declaration is not tested: any qualifier may be attached to either carrier.
class KYR_API ICIMAllowQualifiers {
public:
    virtual ~ICIMAllowQualifiers();

    /// Attaches a qualifier, which must have been made with new; the carrier then owns it. One of that name that is
    /// there already is replaced if it is overridable: its own flavor decides, not that of the new one. If it is not
    /// overridable, an equal one (value and flavor) is accepted without effect and stays the caller's, to be deleted;
    /// any other raises kyrStatusNotOverridable and stays the caller's too. Compare GetQualifier's result with the
    /// address that was passed to learn who owns it. Neither case is logged.
    virtual void AddQualifier(TCIMQualifier& qualifier) = 0;
    /// The qualifier stays the carrier's, and lives until it is replaced or removed. Raises kyrStatusNotFound.
    virtual TCIMQualifier* GetQualifier(const std::string& name) const = 0;
    /// In the order of the lower-cased names, the inherited ones among them.
    virtual std::vector<const TCIMQualifier*> EnumerateQualifiers() const = 0;
    /// Destroys the carrier's qualifier of that name. Only the name counts: if the argument is the carrier's own, it is
    /// gone afterwards; if it is another one of the same name, it stays. Raises kyrStatusNotFound if there is none.
    virtual void RemoveQualifier(TCIMQualifier& qualifier) = 0;
};

#endif
