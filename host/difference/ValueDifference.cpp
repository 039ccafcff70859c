#include "difference/ValueDifference.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TKYRException.h"
#include "model/Provenance.h"
#include "model/Qualifiers.h"
#include "model/Values.h"

namespace {

bool IsCompared(const TCIMPropertyDecl& declaration, bool all) {
    if (IsKey(declaration)) return false;
    return all || (!IsVolatile(declaration) && !IsCompanion(declaration));
}

bool IsDeclaredAlike(const TCIMPropertyDecl& a, const TCIMPropertyDecl& b) {
    return a.GetType() == b.GetType() && QualifierString(a, "Units") == QualifierString(b, "Units");
}

// Why the instance has no value for the property: in its own words, or in those of the declaration.
std::string AbsenceOf(const TCIMInstance& instance, const TCIMProperty& property) {
    std::string absence = TProvenance(instance).AbsenceOf(property.GetName());
    return absence.empty() ? NullMeaningOf(property.GetDeclaration()) : absence;
}

bool IsUnreadable(const std::string& absence) {
    const EReason code = CodeOfAbsence(absence);
    return code == EReason::eNoPermission || code == EReason::eReadError;
}

// The quick answer for most properties: a value of its own is never equal to the same default, nor a NaN to another.
bool IsEqual(const TCIMProperty& a, const TCIMProperty& b) {
    try {
        return a == b;
    } catch (const TKYRException&) {
        return false;
    }
}

std::vector<std::string> SortedTexts(const TCIMValue& array) {
    std::vector<std::string> texts;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(array)) texts.push_back(PlainText(element));
    std::sort(texts.begin(), texts.end());
    return texts;
}

// A NaN.
bool EqualsNothing(const TCIMValue& value) {
    const TCIMValue copy(value);
    return copy != value;
}

// The core never finds references into two containers equal.
bool IsSameValue(const TCIMValue& a, const TCIMValue& b) {
    if (a.GetType() == kStringArray) return SortedTexts(a) == SortedTexts(b);
    if (a.IsReference()) return PlainText(a) == PlainText(b);
    try {
        return a == b || (EqualsNothing(a) && EqualsNothing(b));
    } catch (const TKYRException&) {
        return false;  // a moment and an interval
    }
}

// Of values that differ. One that was unreadable and is not any longer has not changed.
void AddDifference(const TCIMInstance& old, const TCIMProperty& before, const TCIMInstance& present,
                   const TCIMProperty& after, TValueDifferences& differences) {
    if (before.GetValue().IsNull() && IsUnreadable(AbsenceOf(old, before))) return;
    std::string absence = after.GetValue().IsNull() ? AbsenceOf(present, after) : "";
    std::vector<TPropertyDifference>& kind = IsUnreadable(absence) ? differences.unreadable : differences.changed;
    kind.push_back({&before, &after, std::move(absence)});
}

std::string NameOf(const TCIMProperty& property) { return PlainText(property.GetValue()); }

}  // namespace

TElementDifference CompareElements(const std::vector<std::string>& before, const std::vector<std::string>& after) {
    std::vector<std::string> old(before), present(after);
    std::sort(old.begin(), old.end());
    std::sort(present.begin(), present.end());
    TElementDifference difference;
    std::set_difference(old.begin(), old.end(), present.begin(), present.end(), std::back_inserter(difference.removed));
    std::set_difference(present.begin(), present.end(), old.begin(), old.end(), std::back_inserter(difference.added));
    return difference;
}

TValueComparison::TValueComparison(const TScope& before, const TCIMClass& old, const TScope& after,
                                   const TCIMClass& present, bool all)
    : fBefore(before), fAfter(after) {
    for (const TCIMPropertyDecl* declaration : present.EnumeratePropertyDecls()) {
        const TCIMPropertyDecl* const other = old.FindPropertyDecl(declaration->GetName());
        if (!IsCompared(*declaration, all)) continue;
        if (other == nullptr)
            fOnlyAfter.push_back(declaration->GetName());
        else if (IsCompared(*other, all))
            AddCompared(old, *other, present, *declaration);
    }
    for (const TCIMPropertyDecl* declaration : old.EnumeratePropertyDecls())
        if (IsCompared(*declaration, all) && present.FindPropertyDecl(declaration->GetName()) == nullptr)
            fOnlyBefore.push_back(declaration->GetName());
}

void TValueComparison::AddCompared(const TCIMClass& old, const TCIMPropertyDecl& before, const TCIMClass& present,
                                   const TCIMPropertyDecl& after) {
    fCompared.push_back({TPropertyPlace(old, before.GetName()), TPropertyPlace(present, after.GetName()),
                         IsDeclaredAlike(before, after)});
}

TValueDifferences TValueComparison::Compare(const TCIMInstance& old, const TCIMInstance& present) const {
    TValueDifferences differences;
    const TProperties was = old.EnumerateProperties(), is = present.EnumerateProperties();
    for (const TCompared& compared : fCompared) {
        const TCIMProperty* const before = compared.before.Find(old, was);
        const TCIMProperty* const after = compared.after.Find(present, is);
        if (before != nullptr && after != nullptr && !IsSame(*before, *after, compared.isDeclaredAlike))
            AddDifference(old, *before, present, *after, differences);
    }
    if (&old == fBefore.System() && &present == fAfter.System()) CompareName(old, present, differences);
    return differences;
}

std::vector<TPropertyDifference> TValueComparison::ValuesOf(const TCIMInstance& instance, bool isRemoved) const {
    std::vector<TPropertyDifference> values;
    for (const TCompared& compared : fCompared) {
        const TCIMProperty* const property = instance.FindProperty(compared.before.Name());
        if (property == nullptr || property->GetValue().IsNull()) continue;
        values.push_back({isRemoved ? property : nullptr, isRemoved ? nullptr : property});
    }
    return values;
}

bool TValueComparison::IsSame(const TCIMProperty& old, const TCIMProperty& present, bool isDeclaredAlike) const {
    if (isDeclaredAlike && IsEqual(old, present)) return true;
    const TCIMValue before = old.GetValue(), after = present.GetValue();
    if (before.IsNull() || after.IsNull()) return before.IsNull() && after.IsNull();
    if (AreOwnNames(old, present)) return true;
    // Another version of the program may have declared another unit; what people read is in the same one.
    if (!isDeclaredAlike) return DisplayElements(old) == DisplayElements(present);
    return IsSameValue(before, after);
}

// The name of the machine is told once, by the machine itself.
bool TValueComparison::AreOwnNames(const TCIMProperty& old, const TCIMProperty& present) const {
    return !fBefore.Name().empty() && NameOf(old) == fBefore.Name() && NameOf(present) == fAfter.Name();
}

void TValueComparison::CompareName(const TCIMInstance& old, const TCIMInstance& present,
                                   TValueDifferences& differences) const {
    if (fBefore.Name() != fAfter.Name())
        differences.changed.push_back({old.FindProperty("Name"), present.FindProperty("Name")});
}
