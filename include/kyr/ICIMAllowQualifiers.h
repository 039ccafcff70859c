#ifndef ICIMALLOWQUALIFIERS_H
#define ICIMALLOWQUALIFIERS_H

#include <string>
#include <vector>

#include "kyr/kyrExport.h"

class TCIMQualifier;

/// What carries qualifiers: a class or a property declaration. Names are found without regard to case; a malformed
/// name raises kyrStatusInvalidCIMName.
class KYR_API ICIMAllowQualifiers {
public:
    virtual ~ICIMAllowQualifiers();

    /// Attaches a qualifier, which must have been made with new; the carrier then owns it. One of that name that is
    /// there already is replaced if it is overridable. If it is not, an equal one (value and flavor) is accepted and
    /// stays the caller's, and any other raises kyrStatusNotOverridable and stays the caller's too.
    virtual void AddQualifier(TCIMQualifier& qualifier) = 0;
    /// Raises kyrStatusNotFound.
    virtual TCIMQualifier* GetQualifier(const std::string& name) const = 0;
    /// In the order of the lower-cased names.
    virtual std::vector<const TCIMQualifier*> EnumerateQualifiers() const = 0;
    /// Destroys the qualifier of that name, be it this one or another; kyrStatusNotFound if there is none.
    virtual void RemoveQualifier(TCIMQualifier& qualifier) = 0;
};

#endif
