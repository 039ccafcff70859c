#ifndef TCIMPROPERTY_H
#define TCIMPROPERTY_H

#include <string>
#include <vector>

#include "kyr/TCIMValue.h"

class TCIMPropertyDecl;
class TCIMPropertyImpl;

/// One property of an instance: its declaration, the value that was collected, and the value of an earlier
/// collection. A copy makes a body of its own. The declaration must outlive it.
class KYR_API TCIMProperty {
public:
    /// Without a value of its own: GetValue gives the declaration's default.
    TCIMProperty(const TCIMPropertyDecl& declaration);
    TCIMProperty(const TCIMPropertyDecl& declaration, const TCIMValue& value);
    TCIMProperty(const TCIMProperty& other);
    TCIMProperty& operator=(const TCIMProperty& other);
    ~TCIMProperty();

    /// Name, type and array-ness are the declaration's.
    std::string GetName() const;
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    const TCIMPropertyDecl& GetDeclaration() const;

    TCIMValue GetValue() const;
    /// The earlier value, or the present one if none was stored.
    TCIMValue GetPrevValue() const;
    /// The type must be the declared one, also for NULL, and a reference must point to the declared class or a subclass
    /// of it: kyrStatusTypeMismatch, with a line in the log, and the property stays as it was.
    void SetValue(const TCIMValue& value);
    /// The same, except that a NULL of any type is taken.
    void SetPrevValue(TCIMValue value);
    /// Records that there was no earlier value.
    void SetPrevValue();
    /// True once an earlier value was stored, equal to the present one or not.
    bool IsPrevValueDifferent() const;
    /// True while the property has no value of its own.
    bool GetPropagated() const;

    /// By declaration (that is by name) and own value.
    bool operator==(const TCIMProperty& other) const;
    bool operator<(const TCIMProperty& other) const;

    /// The value for people, by the qualifiers of its declaration: Values and ValueMap, UNITS, DISPLAYFIXEDUNITS,
    /// ABBREVIATEUNITS, DISPLAYCPUTIME, BASE, NULLDISPLAY. NULL gives the text of NULLDISPLAY, an empty one without
    /// it. Raises kyrStatusNotSupported for a BASE that does not suit the type and kyrStatusInvalidDateTime for time
    /// units above seconds.
    std::string ToString() const;
    /// The same for each element of an array, and one text for a scalar, whose Values do not count here.
    std::vector<std::string> ToStringVector() const;
    /// The same two for the earlier value.
    std::string PrevToString() const;
    std::vector<std::string> PrevToStringVector() const;

    TCIMPropertyImpl* GetBody() const;

private:
    TCIMPropertyImpl* fBody;  // owned, never null
};

#endif
