#ifndef KYR_MODEL_TCIMPROPERTYIMPL_H
#define KYR_MODEL_TCIMPROPERTYIMPL_H

#include <memory>
#include <string>
#include <vector>

#include "kyr/TCIMProperty.h"
#include "model/TOptionalValue.h"
#include "model/TSmallObject.h"

struct TValueWords;

class TCIMPropertyImpl : public TSmallObject {
public:
    /// One entry of ValueMap and Values: a range of numbers and its text.
    struct TValueMapEntry {
        unsigned long fLow;
        unsigned long fHigh;  // the greatest number if the range is open
        std::string fText;
    };

    explicit TCIMPropertyImpl(const TCIMPropertyDecl& declaration) : fDeclaration(&declaration) {}
    TCIMPropertyImpl(const TCIMPropertyImpl& other);
    TCIMPropertyImpl& operator=(const TCIMPropertyImpl&) = delete;

    const TCIMPropertyDecl& GetDeclaration() const { return *fDeclaration; }
    /// The property's own value, or the default of its declaration. GetValue copies it.
    const TCIMValue& Value() const;
    /// The previous value; GetPrevValue copies it.
    const TCIMValue& PrevValue() const;
    TCIMValue GetValue() const { return Value(); }
    TCIMValue GetPrevValue() const { return PrevValue(); }
    void SetValue(const TCIMValue& value);
    /// Like SetValue, but may move the value's content.
    void TakeValue(TCIMValue& value);
    void SetPrevValue(const TCIMValue& value);
    void SetPrevValue();
    bool IsPrevValueDifferent() const { return fPrevValue != nullptr; }
    bool GetPropagated() const { return !fValue.HasValue(); }
    bool operator==(const TCIMPropertyImpl& other) const;
    bool operator<(const TCIMPropertyImpl& other) const;

    // Texts for display, made by the qualifiers of the declaration.

    std::string ToString() const;
    std::string PrevToString() const;
    std::vector<std::string> ToStringVector() const;
    std::vector<std::string> PrevToStringVector() const;
    /// Without the texts of ValueMap and Values.
    std::vector<std::string> ToStringVectorWithBase() const;
    std::vector<std::string> PrevToStringVectorWithBase() const;
    /// With units; for NULL, the text of NULLDISPLAY.
    std::string ToStringWithQualifiers(const TCIMValue& value) const;
    /// By the qualifier BASE only.
    std::string ToStringWithBase(const TCIMValue& value) const;
    /// Fills the table from Values and ValueMap, and the text for numbers that are not in it. False if the declaration
    /// has no valid table.
    bool BuildValueMapEntryArray(std::vector<TValueMapEntry>& table, std::string& defaultText) const;
    std::string LookupInTable(const TCIMValue& value, const std::vector<TValueMapEntry>& table,
                              const std::string& defaultText) const;

private:
    void CheckValue(const TCIMValue& value, const char* operation) const;
    void Store(TCIMValue& value);
    std::string DisplayText(const TCIMValue& value) const;
    std::vector<std::string> DisplayTexts(const TCIMValue& value) const;
    std::vector<std::string> PlainTexts(const TCIMValue& value) const;
    const TValueWords* FindWords() const;

    const TCIMPropertyDecl* fDeclaration;  // its class owns it
    TOptionalValue fValue;
    std::unique_ptr<TCIMValue> fPrevValue;  // null: not set
};

#endif
