#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "model/TCIMArrayValueImpl.h"
#include "model/TCIMPropertyDeclImpl.h"
#include "model/TCIMPropertyImpl.h"
#include "model/TCIMQualifierImpl.h"
#include "model/TCIMStringValueImpl.h"
#include "model/TNormalizedName.h"
#include "model/UnitDisplay.h"
#include "model/ValueMapTable.h"
#include "platform/CoreLog.h"

namespace {
using TType = TCIMValue::TCIMType;

constexpr TLiteralName kAbbreviateUnits{"ABBREVIATEUNITS", "abbreviateunits"};
constexpr TLiteralName kBase{"BASE", "base"};
constexpr TLiteralName kDisplayCPUTime{"DISPLAYCPUTIME", "displaycputime"};
constexpr TLiteralName kDisplayFixedUnits{"DISPLAYFIXEDUNITS", "displayfixedunits"};
constexpr TLiteralName kNullDisplay{"NULLDISPLAY", "nulldisplay"};
constexpr TLiteralName kUnits{"UNITS", "units"};
constexpr TLiteralName kValueMap{"ValueMap", "valuemap"};
constexpr TLiteralName kValues{"Values", "values"};

// The value of a qualifier; null if the declaration does not have it or its value is NULL.
const TCIMValue* FindValue(const TCIMPropertyDecl& declaration, const TLiteralName& name) {
    const TCIMQualifier* const qualifier = TCIMPropertyDeclImpl::Of(declaration).Qualifiers().Find(name);
    if (qualifier == nullptr) return nullptr;
    const TCIMValue& value = TCIMQualifierImpl::ValueOf(*qualifier);
    return value.IsNull() ? nullptr : &value;
}

const std::string* FindText(const TCIMPropertyDecl& declaration, const TLiteralName& name) {
    const TCIMValue* const value = FindValue(declaration, name);
    if (value == nullptr || value->GetType() != TType::eCIMString) return nullptr;
    return &TCIMStringValueImpl::TextOf(*value);
}

std::string NullText(const TCIMPropertyDecl& declaration) {
    const std::string* const text = FindText(declaration, kNullDisplay);
    return text != nullptr ? *text : std::string();
}

bool IsStringArray(const TCIMValue& value) {
    return value.GetType() == static_cast<TType::ECIMType>(TType::eCIMString | TType::eCIMArrayFlag);
}

bool Complain(const TCIMPropertyDecl& declaration, const char* text) {
    LogCore(kyrLogDebug, "Property " + declaration.GetName() + text);
    return false;
}

// False for types that are displayed with neither the words of a ValueMap nor units.
bool ReadUnsigned(const TCIMValue& value, unsigned long& number) {
    switch (value.GetType()) {
        case TType::eCIMBoolean:
            number = static_cast<bool>(value);
            return true;
        case TType::eCIMUint8:
            number = static_cast<unsigned char>(value);
            return true;
        case TType::eCIMUint16:
            number = static_cast<unsigned short>(value);
            return true;
        case TType::eCIMUint32:
            number = static_cast<unsigned int>(value);
            return true;
        case TType::eCIMUint64:
            number = static_cast<unsigned long>(value);
            return true;
        default:
            return false;
    }
}

// Whether values of the type, or elements of an array of it, may be displayed as words of a ValueMap.
bool HasWords(TType type) {
    switch (type & ~TType::eCIMArrayFlag) {
        case TType::eCIMBoolean:
        case TType::eCIMUint8:
        case TType::eCIMUint16:
        case TType::eCIMUint32:
        case TType::eCIMUint64:
            return true;
        default:
            return false;
    }
}
}  // namespace

std::string TCIMPropertyImpl::ToString() const { return DisplayText(Value()); }
std::string TCIMPropertyImpl::PrevToString() const { return DisplayText(PrevValue()); }
std::vector<std::string> TCIMPropertyImpl::ToStringVector() const { return DisplayTexts(Value()); }
std::vector<std::string> TCIMPropertyImpl::PrevToStringVector() const { return DisplayTexts(PrevValue()); }
std::vector<std::string> TCIMPropertyImpl::ToStringVectorWithBase() const { return PlainTexts(Value()); }
std::vector<std::string> TCIMPropertyImpl::PrevToStringVectorWithBase() const { return PlainTexts(PrevValue()); }

std::string TCIMPropertyImpl::ToStringWithQualifiers(const TCIMValue& value) const {
    if (value.IsNull()) return NullText(*fDeclaration);
    unsigned long number = 0;
    if (value.GetType() == TType::eCIMBoolean || !ReadUnsigned(value, number)) return ToStringWithBase(value);
    const std::string* const units = FindText(*fDeclaration, kUnits);
    if (units == nullptr) return ToStringWithBase(value);
    const TDeclaredUnit unit = ReadUnit(*units);
    if (unit.name == "Seconds")
        return DisplayTimeSpan(number, unit.magnitude, FindValue(*fDeclaration, kDisplayCPUTime) != nullptr);
    const TScaledUnit* const scaled = FindScaledUnit(unit.name);
    if (scaled == nullptr) return ToStringWithBase(value);
    const std::string* const fixed = FindText(*fDeclaration, kDisplayFixedUnits);
    return DisplayScaled(number, unit.magnitude, *scaled, fixed != nullptr ? FindFixedMagnitude(*fixed) : std::nullopt,
                         FindValue(*fDeclaration, kAbbreviateUnits) != nullptr);
}

std::string TCIMPropertyImpl::ToStringWithBase(const TCIMValue& value) const {
    const TCIMValue* const base = FindValue(*fDeclaration, kBase);
    if (base == nullptr || base->GetType() != TType::eCIMUint8) return value.ToString(10);
    return value.ToString(static_cast<unsigned char>(*base));
}

bool TCIMPropertyImpl::BuildValueMapEntryArray(std::vector<TValueMapEntry>& table, std::string& defaultText) const {
    const TCIMValue* const values = FindValue(*fDeclaration, kValues);
    if (values == nullptr) return false;
    if (!IsStringArray(*values)) return Complain(*fDeclaration, " has a VALUE qualifier that isn't a string!");
    const TCIMValue* const valueMap = FindValue(*fDeclaration, kValueMap);
    if (valueMap != nullptr && !IsStringArray(*valueMap))
        return Complain(*fDeclaration, " has a VALUEMAP qualifier that isn't a string!");

    const std::vector<TCIMValue>& words = TCIMArrayValueImpl::ElementsOf(*values);
    table.reserve(table.size() + words.size());
    if (valueMap == nullptr) {
        for (size_t i = 0; i < words.size(); ++i) table.push_back({i, i, words[i].ToString(10)});
        return true;
    }
    const std::vector<TCIMValue>& numbers = TCIMArrayValueImpl::ElementsOf(*valueMap);
    if (numbers.size() != words.size())
        return Complain(*fDeclaration, " has VALUE and VALUEMAP qualifiers that aren't the same size!");
    TValueMapReader reader(table, defaultText);
    for (size_t i = 0; i < words.size(); ++i)
        if (const char* const fault = reader.Read(numbers[i].ToString(10), words[i].ToString(10)))
            return Complain(*fDeclaration, fault);
    return true;
}

std::string TCIMPropertyImpl::LookupInTable(const TCIMValue& value, const std::vector<TValueMapEntry>& table,
                                            const std::string& defaultText) const {
    unsigned long number = 0;
    if (!ReadUnsigned(value, number)) return value.ToString(10);
    if (const std::string* const word = FindWord(table, number)) return *word;
    return defaultText.empty() ? value.ToString(10) : defaultText;
}

// Null if the declaration has no words, or no valid ones; the latter is logged each time.
const TValueWords* TCIMPropertyImpl::FindWords() const {
    if (!HasWords(fDeclaration->GetType())) return nullptr;
    const TCIMPropertyDeclImpl& declaration = TCIMPropertyDeclImpl::Of(*fDeclaration);
    if (const TValueWords* const kept = declaration.FindWords()) return kept;
    TValueWords words;
    if (!BuildValueMapEntryArray(words.table, words.defaultText)) return nullptr;
    return &declaration.KeepWords(std::make_unique<TValueWords>(std::move(words)));
}

std::string TCIMPropertyImpl::DisplayText(const TCIMValue& value) const {
    const TValueWords* const words = value.IsNull() || fDeclaration->IsArray() ? nullptr : FindWords();
    return words != nullptr ? LookupInTable(value, words->table, words->defaultText) : ToStringWithQualifiers(value);
}

std::vector<std::string> TCIMPropertyImpl::DisplayTexts(const TCIMValue& value) const {
    const TValueWords* const words = value.IsNull() || !fDeclaration->IsArray() ? nullptr : FindWords();
    if (words == nullptr) return PlainTexts(value);
    std::vector<std::string> texts;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value))
        texts.push_back(LookupInTable(element, words->table, words->defaultText));
    return texts;
}

std::vector<std::string> TCIMPropertyImpl::PlainTexts(const TCIMValue& value) const {
    if (!fDeclaration->IsArray()) return {ToStringWithQualifiers(value)};
    if (value.IsNull()) return {NullText(*fDeclaration)};
    std::vector<std::string> texts;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value))
        texts.push_back(ToStringWithQualifiers(element));
    return texts;
}
