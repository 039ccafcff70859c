#ifndef KYR_MODEL_TCIMPROPERTYIMPL_H
#define KYR_MODEL_TCIMPROPERTYIMPL_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kyr/TCIMProperty.h"
#include "model/TSmallObject.h"

class TCIMPropertyImpl : public TSmallObject {
public:
    /// One word of a value map: the numbers that it stands for.
    struct TValueMapEntry {
        unsigned long fLow;
        unsigned long fHigh;  // all ones: open-ended
        std::string fText;
    };

    TCIMPropertyImpl(TCIMProperty& owner, const TCIMPropertyDecl& declaration)
        : fOwner(&owner), fDeclaration(&declaration) {}
    TCIMPropertyImpl(const TCIMPropertyImpl& other, TCIMProperty& owner);
    /// Keeps the other's owner, which may be gone: nothing uses it.
    TCIMPropertyImpl(const TCIMPropertyImpl& other) : TCIMPropertyImpl(other, *other.fOwner) {}
    TCIMPropertyImpl& operator=(const TCIMPropertyImpl&) = delete;

    const TCIMPropertyDecl& GetDeclaration() const { return *fDeclaration; }
    /// The value that GetValue copies: the property's own, or else the declaration's default.
    const TCIMValue& Value() const;
    /// The same for GetPrevValue.
    const TCIMValue& PrevValue() const;
    TCIMValue GetValue() const { return Value(); }
    TCIMValue GetPrevValue() const { return PrevValue(); }
    void SetValue(const TCIMValue& value);
    /// SetValue, which may use the value up.
    void TakeValue(TCIMValue& value);
    void SetPrevValue(const TCIMValue& value);
    void SetPrevValue();
    bool IsPrevValueDifferent() const { return fIsPrevSet; }
    bool GetPropagated() const { return !fValue.has_value(); }
    bool operator==(const TCIMPropertyImpl& other) const;
    bool operator<(const TCIMPropertyImpl& other) const;

    // Display, by the declaration's qualifiers.

    std::string ToString() const;
    std::string PrevToString() const;
    std::vector<std::string> ToStringVector() const;
    std::vector<std::string> PrevToStringVector() const;
    /// Without the words of a value map.
    std::vector<std::string> ToStringVectorWithBase() const;
    std::vector<std::string> PrevToStringVectorWithBase() const;
    /// With units, or the text for NULL.
    std::string ToStringWithQualifiers(const TCIMValue& value) const;
    /// With the radix alone.
    std::string ToStringWithBase(const TCIMValue& value) const;
    /// The table of Values and ValueMap, and the word for what is not in it; false if there is none that can be used.
    bool BuildValueMapEntryArray(std::vector<TValueMapEntry>& table, std::string& defaultText) const;
    std::string LookupInTable(const TCIMValue& value, std::vector<TValueMapEntry>& table,
                              const std::string& defaultText) const;

private:
    void CheckValue(const TCIMValue& value, const char* operation) const;
    void Store(TCIMValue& value);
    std::string DisplayText(const TCIMValue& value) const;
    std::vector<std::string> DisplayTexts(const TCIMValue& value) const;
    std::vector<std::string> PlainTexts(const TCIMValue& value) const;

    TCIMProperty* fOwner;
    const TCIMPropertyDecl* fDeclaration;  // its class owns it
    std::optional<TCIMValue> fValue;
    std::unique_ptr<TCIMValue> fPrevValue;
    bool fIsPrevSet = false;
};

#endif
