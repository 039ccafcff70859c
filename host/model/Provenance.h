#ifndef KYR_HOST_MODEL_PROVENANCE_H
#define KYR_HOST_MODEL_PROVENANCE_H

#include <map>
#include <string>
#include <vector>

#include "model/ClassNames.h"
#include "model/Reason.h"

class TCIMInstance;
class TCIMPropertyDecl;

/// Why a property has no value, as the instance's property UnavailableValues says it: "no permission: /sys/...".
struct TAbsenceNote {
    std::string property;
    std::string note;
};
std::vector<TAbsenceNote> AbsenceNotesOf(const TCIMInstance& instance);

/// Why properties of the instance have no value: the entries of its property UnavailableValues, in their order. Entries
/// that do not use one of the wordings in that property's description are left out.
std::vector<TReason> AbsencesOf(const TCIMInstance& instance);

/// Why an instance has no value for the property, if its UnavailableValues does not say: the qualifier NullMeans, such
/// as "does not apply: it is no VLAN". Empty if the property has none.
std::string NullMeaningOf(const TCIMPropertyDecl& declaration);
/// The code for such a text, by its first words; eNone if they are none of the known ones.
EReason CodeOfAbsence(const std::string& text);

/// The instance's properties ValueSources and UnavailableValues, which say for other properties where the value was
/// read, and why there is none.
class TProvenance {
public:
    explicit TProvenance(const TCIMInstance& instance);

    /// Such as "/sys/..."; empty if the instance does not say. Names are compared without regard to case.
    std::string SourceOf(const std::string& property) const { return Find(fSources, property); }
    /// Such as "no permission: /sys/..."; empty if the instance does not say.
    std::string AbsenceOf(const std::string& property) const { return Find(fAbsences, property); }

private:
    using TNotes = std::map<std::string, std::string, TNameLess>;

    static TNotes Read(const TCIMInstance& instance, const char* companion);
    static std::string Find(const TNotes& notes, const std::string& property);

    TNotes fSources;
    TNotes fAbsences;
};

#endif
