#include "render/SummaryPieces.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
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

constexpr size_t kLongestValue = 96;  // in bytes; values may be of any length
constexpr size_t kLengthOfDay = 10;   // of "2024-03-01"

const TCIMProperty* FindSet(const TCIMInstance& instance, const char* name) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? nullptr : property;
}

std::string Absence(const TCIMInstance& instance, const char* name, const std::string& told) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return !told.empty() || property == nullptr ? told : NullMeaningOf(property->GetDeclaration());
}

// "no serial number known" if the machine tells none, and otherwise why, as "serial number: no permission".
std::string AbsenceText(const TCIMInstance& instance, const TSummaryPiece& piece, const std::string& told) {
    switch (const EReason code = CodeOfAbsence(Absence(instance, piece.property, told))) {
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

// "8 Cores" of "4 Cores" twice, and "1 Core".
std::string TotalOf(const TCIMInstance& instance, const char* property, const std::string& value, size_t count) {
    const uint64_t total = SummaryNumber(instance, property) * count;
    const std::string unit = value.substr(std::min(value.find(' '), value.size()));
    return std::to_string(total) + (total == 1 && EndsWith(unit, "s") ? unit.substr(0, unit.size() - 1) : unit);
}

/// Puts pieces together.
class TLine {
public:
    TLine(const TCIMInstance& instance, size_t count) : fInstance(instance), fProvenance(instance), fCount(count) {}

    void Add(const TSummaryPiece& piece) {
        const std::string told = fProvenance.AbsenceOf(piece.property);
        const std::string value = told.empty() ? SummaryValue(fInstance, piece.property) : "";
        if (!value.empty()) return Append(SeparatorFor(piece), InForm(value, piece) + piece.after);
        const std::string text = piece.absent == nullptr ? "" : AbsenceText(fInstance, piece, told);
        if (text.empty()) return;
        Append(", ", text);
        fEndsInAbsence = true;
    }

    const std::string& Text() const { return fText; }

private:
    // A value right behind the word for another's absence would seem to belong to it.
    const char* SeparatorFor(const TSummaryPiece& piece) const {
        return fEndsInAbsence && std::strcmp(piece.before, " ") == 0 ? ", " : piece.before;
    }

    void Append(const char* separator, const std::string& text) {
        if (!fText.empty()) fText += separator;
        fText += text;
        fEndsInAbsence = false;
    }

    std::string InForm(const std::string& value, const TSummaryPiece& piece) const {
        if (piece.form == ESummaryForm::eWhole) return value;
        if (piece.form == ESummaryForm::eTotal) return TotalOf(fInstance, piece.property, value, fCount);
        return value.substr(0, piece.form == ESummaryForm::eDay ? kLengthOfDay : value.find(' '));
    }

    const TCIMInstance& fInstance;
    const TProvenance fProvenance;
    const size_t fCount;
    std::string fText;
    bool fEndsInAbsence = false;
};

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

std::string SummaryText(const TCIMInstance& instance, const std::vector<TSummaryPiece>& pieces, size_t count) {
    TLine line(instance, count);
    for (const TSummaryPiece& piece : pieces) line.Add(piece);
    return line.Text();
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
