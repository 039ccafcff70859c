#ifndef TCIMPROPERTY_H
#define TCIMPROPERTY_H

#include <string>
#include <vector>

#include "kyr/TCIMValue.h"

class TCIMPropertyDecl;
class TCIMPropertyImpl;

/// One property of an instance: its declaration, the value that was collected, and the value of an earlier
/// collection. A copy makes a body of its own. The declaration must outlive it. One thread at a time per object.
class KYR_API TCIMProperty {
public:
    /// Without a value of its own: GetValue gives the declaration's default.
    TCIMProperty(const TCIMPropertyDecl& declaration);
    /// With a value, which SetValue may refuse.
    TCIMProperty(const TCIMPropertyDecl& declaration, const TCIMValue& value);
    /// @{
    /// Own and earlier values are checked once more: a copy raises kyrStatusTypeMismatch if the declaration has been
    /// given another type since.
    TCIMProperty(const TCIMProperty& other);
    TCIMProperty& operator=(const TCIMProperty& other);
    /// @}
    ~TCIMProperty();

    /// @{
    /// Name, type and array-ness are the declaration's, and follow it when it changes.
    std::string GetName() const;
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    const TCIMPropertyDecl& GetDeclaration() const;
    /// @}

    /// A copy of the own value, or of the declaration's default if there is none.
    TCIMValue GetValue() const;
    /// A copy of the earlier value, or of the present one if none was stored.
    TCIMValue GetPrevValue() const;
    /// The type must be the declared one, also for NULL, and a reference must point to the declared class or a subclass
    /// of it: kyrStatusTypeMismatch, and the property stays as it was. The log has "SetValue: decl is type ... but
    /// value is type ..." or "SetValue: decl references type ... but value references ...". Once set, a property cannot
    /// be made to show its default again.
    void SetValue(const TCIMValue& value);
    /// The same with "SetPrevValue" in the lines, except that a NULL of any type is taken.
    void SetPrevValue(TCIMValue value);
    /// Records that there was no earlier value: GetPrevValue gives a NULL without a type.
    void SetPrevValue();
    /// True once an earlier value was stored, equal to the present one or not.
    bool IsPrevValueDifferent() const;
    /// True while the property has no value of its own.
    bool GetPropagated() const;

    /// @{
    /// By declaration (that is by name, in any case) and own value: a value that equals the default is another than
    /// none, and none comes first in the order. Two arrays cannot be ordered: kyrStatusNotImplemented.
    bool operator==(const TCIMProperty& other) const;
    bool operator<(const TCIMProperty& other) const;
    /// @}

    /// The value for people, by the qualifiers of its declaration. All of them are read anew at each call.
    ///  - Values and ValueMap: the word for a boolean or an unsigned number. A table that cannot be used is a line at
    ///    kyrLogDebug, and the number is shown.
    ///  - UNITS, for unsigned numbers: bytes, bits and their rates climb to the next unit above its step ("1.5
    ///    Kilobytes"), or to that of DISPLAYFIXEDUNITS; ABBREVIATEUNITS gives "1.5 KB". Seconds become words ("1 minute
    ///    30 seconds "), or with DISPLAYCPUTIME "00:01:30.000". Another unit leaves the number alone.
    ///  - BASE: 8, 10 or 16 for a number without words and units.
    ///  - NULLDISPLAY: the text of NULL, which is empty without it.
    ///
    /// ABBREVIATEUNITS and DISPLAYCPUTIME count when they are present and not NULL, even false. Raises
    /// kyrStatusNotSupported for a BASE that does not suit the type, kyrStatusInvalidDateTime for time units above
    /// seconds, kyrStatusValueIsNULL for a NULL word or element. docs/oddities.md lists what else reports rely on.
    std::string ToString() const;
    /// The same for each element of an array, and one text for a scalar, whose Values do not count here. A NULL array
    /// gives one text, that of NULLDISPLAY. (ToString shows an array in braces, without words and units.)
    std::vector<std::string> ToStringVector() const;
    /// @{
    /// The same two for the earlier value.
    std::string PrevToString() const;
    std::vector<std::string> PrevToStringVector() const;
    /// @}

    /// For the core. Belongs to this handle, and changes when it is assigned to.
    TCIMPropertyImpl* GetBody() const;

private:
    TCIMPropertyImpl* fBody;  // owned, never null
};

#endif
