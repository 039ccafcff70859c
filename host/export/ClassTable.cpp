#include "export/ClassTable.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "base/Text.h"
#include "json/JsonValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/ClassNames.h"
#include "model/Provenance.h"
#include "model/Qualifiers.h"
#include "model/ReadingOrder.h"
#include "model/SpokenNames.h"

namespace {

using CIM = TCIMValue::TCIMType;
using TDeclarations = std::vector<const TCIMPropertyDecl*>;

constexpr const char* kColumnsOfAll[] = {"run_id", "host_id", "id"};

/// What a column of a CIM type holds, and in how many bits.
struct TType {
    CIM::ECIMType type;
    EColumn kind;
    int bits;
};
constexpr TType kTypes[] = {{CIM::eCIMBoolean, EColumn::eBoolean, 0},    {CIM::eCIMUint8, EColumn::eInteger, 16},
                            {CIM::eCIMSint8, EColumn::eInteger, 16},     {CIM::eCIMUint16, EColumn::eInteger, 32},
                            {CIM::eCIMSint16, EColumn::eInteger, 16},    {CIM::eCIMUint32, EColumn::eInteger, 64},
                            {CIM::eCIMSint32, EColumn::eInteger, 32},    {CIM::eCIMUint64, EColumn::eUnsigned64, 64},
                            {CIM::eCIMSint64, EColumn::eInteger, 64},    {CIM::eCIMReal32, EColumn::eReal, 32},
                            {CIM::eCIMReal64, EColumn::eReal, 64},       {CIM::eCIMDateTime, EColumn::eTime, 0},
                            {CIM::eCIMReference, EColumn::eReference, 0}};

TType TypeOf(const TCIMPropertyDecl& declaration) {
    const auto found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [&](const TType& type) { return type.type == declaration.GetType(); });
    if (found != std::end(kTypes)) return *found;
    return {CIM::eCIMString, declaration.IsArray() ? EColumn::eJson : EColumn::eText, 0};
}

bool IsInteger(EColumn kind) { return kind == EColumn::eInteger || kind == EColumn::eUnsigned64; }

// The bits that a factor adds.
int BitsOf(uint64_t factor) { return factor <= 1 ? 0 : 1 + BitsOf(factor / 2); }

// Whole numbers that are divided have a fraction, and those that are multiplied take more bits.
TType Scaled(TType type, const TUnit& unit) {
    if (!IsInteger(type.kind)) return type;
    if (unit.divisor > 1) return {type.type, EColumn::eReal, 64};
    if (unit.factor == 1) return type;
    const bool fits = type.kind == EColumn::eInteger && type.bits + BitsOf(unit.factor) <= 64;
    if (fits) return {type.type, EColumn::eInteger, 64};
    return {type.type, EColumn::eUnsigned64, type.bits + BitsOf(unit.factor)};
}

bool HasWordsType(CIM type) {
    constexpr CIM::ECIMType kWordTypes[] = {CIM::eCIMBoolean, CIM::eCIMUint8, CIM::eCIMUint16, CIM::eCIMUint32,
                                            CIM::eCIMUint64};
    const auto element = static_cast<CIM::ECIMType>(type & ~CIM::eCIMArrayFlag);
    return std::find(std::begin(kWordTypes), std::end(kWordTypes), element) != std::end(kWordTypes);
}

// Whether its numbers are displayed as words.
bool IsEnumeration(const TCIMPropertyDecl& declaration) {
    return HasWordsType(declaration.GetType()) && !QualifierValue(declaration, "Values", kStringArray).IsNull();
}

std::string WithBlanksAsUnderscores(const std::string& words) {
    std::string name = SqlWords(words);
    name.erase(name.begin(), std::find_if(name.begin(), name.end(), [](char c) { return c != '_'; }));
    name.erase(std::unique(name.begin(), name.end(), [](char a, char b) { return a == '_' && b == '_'; }), name.end());
    return name;
}

/// Makes the columns of one class.
class TTableMaker {
public:
    TTableMaker(const TCIMClass& cls, const std::string& name, const TRareColumns& rare)
        : fRare(rare), fDeclarations(cls.EnumeratePropertyDecls()) {
        fResult.table.name = name;
        fResult.table.nameWithPrefix = ShortName(SqlName(cls.GetName()));
        fResult.table.className = ValidText(cls.GetName());
        fResult.table.isAssociation = cls.IsAssociation();
        for (const char* column : kColumnsOfAll) fNames.insert(column);
    }

    std::unique_ptr<const TClassTable> Make() {
        for (size_t i = 0; i < fDeclarations.size(); ++i)
            if (IsKey(*fDeclarations[i])) AddKey(i);
        for (size_t i = 0; i < fDeclarations.size(); ++i)
            if (!IsKey(*fDeclarations[i])) AddProperty(i);
        for (const size_t index : fRare.scopeKeys) AddProperty(index);
        for (const size_t index : fRare.intervals) AddInterval(index);
        return std::make_unique<const TClassTable>(std::move(fResult));
    }

private:
    void AddKey(size_t index) {
        if (IsScopeKey(fDeclarations[index]->GetName())) return;
        fResult.keys.push_back(index);
        AddProperty(index);
    }

    void AddProperty(size_t index) {
        const TCIMPropertyDecl& declaration = *fDeclarations[index];
        const std::string name = SqlWords(declaration.GetName());
        if (IsEnumeration(declaration)) return AddEnumeration(index, name);
        const std::string declared = UnitOf(declaration);
        const TUnit unit = BaseUnitOf(declared);
        const TType type = Scaled(TypeOf(declaration), unit);
        const std::string end = unit.base.empty() ? "" : "_" + WithBlanksAsUnderscores(unit.base);
        TColumn column = ColumnFor(index, name + end, type);
        column.unit = unit.base;
        column.declaredUnit = declared;
        Add(std::move(column), {index, type.kind == EColumn::eTime ? EPart::eTime : EPart::eValue, unit});
    }

    void AddEnumeration(size_t index, const std::string& name) {
        const TType type = TypeOf(*fDeclarations[index]);
        const bool isArray = fDeclarations[index]->IsArray();
        const TType words{type.type, isArray ? EColumn::eJson : EColumn::eText, 0};
        Add(ColumnFor(index, name, words), {index, EPart::eWord, {}});
        Add(ColumnFor(index, name + "_code", type), {index, EPart::eValue, {}});
    }

    void AddInterval(size_t index) {
        const TType type{CIM::eCIMDateTime, EColumn::eInterval, 0};
        Add(ColumnFor(index, SqlWords(fDeclarations[index]->GetName()) + "_interval", type),
            {index, EPart::eInterval, {}});
    }

    TColumn ColumnFor(size_t index, const std::string& name, const TType& type) {
        const TCIMPropertyDecl& declaration = *fDeclarations[index];
        TColumn column;
        column.name = FreeName(name, type.kind == EColumn::eReference);
        column.kind = type.kind;
        column.bits = type.bits;
        column.property = ValidText(declaration.GetName());
        column.cimType = TypeName(declaration.GetType());
        column.description = DescriptionOf(declaration);
        column.nullMeaning = NullMeaningOf(declaration);
        column.isVolatile = IsVolatile(declaration);
        return column;
    }

    // A reference takes two names, which are no words of SQL.
    std::string FreeName(const std::string& name, bool isReference) {
        std::string tried = ShortName(isReference ? name : Unreserved(name), 63 - std::string(kPathSuffix).size());
        while (!IsFree(tried, isReference)) tried += '_';
        if (!isReference) return *fNames.insert(tried).first;
        for (const char* suffix : {kIdSuffix, kPathSuffix}) fNames.insert(tried + suffix);
        return tried;
    }

    bool IsFree(const std::string& name, bool isReference) const {
        if (!isReference) return fNames.count(name) == 0;
        return fNames.count(name + kIdSuffix) + fNames.count(name + kPathSuffix) == 0;
    }

    void Add(TColumn column, TColumnSource source) {
        fResult.table.columns.push_back(std::move(column));
        fResult.sources.push_back(std::move(source));
    }

    const TRareColumns& fRare;
    const TDeclarations fDeclarations;
    std::set<std::string> fNames;
    TClassTable fResult;
};

// All that columns depend on, but for what describes them.
std::string SignatureOf(const TCIMClass& cls, const std::string& name, const TRareColumns& rare) {
    std::string signature = name + '\n' + cls.GetName() + (cls.IsAssociation() ? "\n1\n" : "\n0\n");
    for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) {
        signature += declaration->GetName() + '\n' + std::to_string(int{declaration->GetType()}) + '\n';
        signature += QualifierString(*declaration, "Units") + '\n';
        signature += IsKey(*declaration) ? 'k' : '-';
        signature += IsEnumeration(*declaration) ? 'e' : '-';
    }
    for (const auto* indexes : {&rare.scopeKeys, &rare.intervals}) {
        signature += '\n';
        for (const size_t index : *indexes) signature += std::to_string(index) + ' ';
    }
    return signature;
}

// SQLite keeps names that begin so for itself.
std::string TableNameOf(const std::string& name) {
    const std::string sqlName = SqlName(name);
    return StartsWith(sqlName, "sqlite_") ? "t_" + sqlName : sqlName;
}

bool IsOwn(const std::string& name) {
    return std::any_of(std::begin(kOwnTables), std::end(kOwnTables), [&](const char* own) { return name == own; });
}

}  // namespace

const TClassTable& TClassTables::Of(const TCIMClass& cls, const std::string& name, const TRareColumns& rare) {
    std::unique_ptr<const TClassTable>& table = fTables[SignatureOf(cls, name, rare)];
    if (table == nullptr) table = TTableMaker(cls, name, rare).Make();
    return *table;
}

std::vector<std::string> TableNamesOf(const std::vector<TCIMClass*>& classes) {
    std::vector<std::string> names;
    std::set<std::string> taken(std::begin(kOwnTables), std::end(kOwnTables));
    for (const TCIMClass* cls : classes) {
        std::string name = TableNameOf(SpokenNameOf(cls->GetName()));
        if (IsOwn(name)) name += '_';
        if (taken.count(ShortName(name)) != 0) name = TableNameOf(cls->GetName());
        name = ShortName(name);
        while (!taken.insert(name).second) name += '_';
        names.push_back(std::move(name));
    }
    return names;
}
