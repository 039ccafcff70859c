#include "render/SummaryPieces.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/Provenance.h"
#include "model/Reason.h"
#include "model/Values.h"

namespace {

constexpr size_t kLongestValue = 60;  // in bytes; values may be of any length
constexpr size_t kLengthOfDay = 10;   // of "2024-03-01"

const TCIMProperty* FindSet(const TCIMInstance& instance, const char* name) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? nullptr : property;
}

std::string Absence(const TCIMInstance& instance, const char* name) {
    const std::string told = TProvenance(instance).AbsenceOf(name);
    const TCIMProperty* const property = instance.FindProperty(name);
    return !told.empty() || property == nullptr ? told : NullMeaningOf(property->GetDeclaration());
}

// "no serial number known" if the machine tells none, and otherwise why, as "serial number: no permission".
std::string AbsenceText(const TCIMInstance& instance, const TSummaryPiece& piece) {
    switch (const EReason code = CodeOfAbsence(Absence(instance, piece.property))) {
        case EReason::eDoesNotApply:
            return "";
        case EReason::eNone:
        case EReason::eNotPresent:
        case EReason::eNotReported:
            return std::string("no ") + piece.absent + " known";
        default:
            return std::string(piece.absent) + ": " + SentenceOf(ReasonFor(code));
    }
}

std::string InForm(const std::string& value, ESummaryForm form) {
    if (form == ESummaryForm::eWhole) return value;
    return value.substr(0, form == ESummaryForm::eDay ? kLengthOfDay : value.find(' '));
}

std::string PieceText(const TCIMInstance& instance, const TSummaryPiece& piece, bool isFirst) {
    const std::string value = SummaryValue(instance, piece.property);
    if (!value.empty()) return (isFirst ? "" : piece.before) + InForm(value, piece.form) + piece.after;
    if (piece.absent == nullptr) return "";
    const std::string text = AbsenceText(instance, piece);
    return isFirst || text.empty() ? text : ", " + text;
}

}  // namespace

std::string SummaryValue(const TCIMInstance& instance, const char* property) {
    const TCIMProperty* const found = FindSet(instance, property);
    return found == nullptr ? "" : CutText(DisplayText(*found), kLongestValue);
}

uint64_t SummaryNumber(const TCIMInstance& instance, const char* property) {
    const TCIMProperty* const found = FindSet(instance, property);
    return found == nullptr ? 0 : std::strtoull(PlainText(found->GetValue()).c_str(), nullptr, 10);
}

bool HasBoolean(const TCIMInstance& instance, const char* property, bool value) {
    const TCIMProperty* const found = FindSet(instance, property);
    if (found == nullptr || found->GetType() != TCIMValue::TCIMType::eCIMBoolean) return false;
    return static_cast<bool>(found->GetValue()) == value;
}

std::string SummarySum(const std::vector<TCIMInstance*>& instances, const char* property) {
    uint64_t sum = 0;
    const TCIMProperty* last = nullptr;
    for (const TCIMInstance* instance : instances) {
        const TCIMProperty* const found = FindSet(*instance, property);
        if (found == nullptr || found->GetType() != TCIMValue::TCIMType::eCIMUint64) continue;
        const uint64_t number = SummaryNumber(*instance, property);
        if (number > UINT64_MAX - sum) return "";
        sum += number;
        last = found;
    }
    if (sum == 0) return "";
    return DisplayText(TCIMProperty(last->GetDeclaration(), TCIMValue(sum)));
}

std::string SummaryText(const TCIMInstance& instance, const std::vector<TSummaryPiece>& pieces) {
    std::string text;
    for (const TSummaryPiece& piece : pieces) text += PieceText(instance, piece, text.empty());
    return text;
}

std::string FoldedTexts(const std::vector<std::string>& texts, size_t most) {
    // To fold a single one would save nothing.
    if (texts.size() <= most + 1) return Join(texts);
    const std::vector<std::string> first(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(most));
    return Join(first) + " and " + std::to_string(texts.size() - most) + " more";
}

std::vector<TCIMInstance*> InstancesOf(const TContainer& container, const char* className) {
    const TCIMClass* const cls = container.FindClass(className);
    return cls == nullptr ? std::vector<TCIMInstance*>() : cls->EnumerateInstances(true);
}
