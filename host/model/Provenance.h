#ifndef KYR_HOST_MODEL_PROVENANCE_H
#define KYR_HOST_MODEL_PROVENANCE_H

#include <map>
#include <string>
#include <vector>

#include "model/ClassNames.h"
#include "model/Reason.h"

class TCIMInstance;

/// Why properties of the instance have no value: the entries of its property UnavailableValues, in their order. Entries
/// that do not use one of the four wordings in that property's description are left out.
std::vector<TReason> AbsencesOf(const TCIMInstance& instance);

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
