#ifndef KYR_HOST_MODEL_PROVENANCE_H
#define KYR_HOST_MODEL_PROVENANCE_H

#include <map>
#include <string>
#include <vector>

#include "model/ClassNames.h"
#include "model/Reason.h"

class TCIMInstance;

/// Why properties of the instance have no value, in the order in which its UnavailableValues tells it. An entry with
/// words that are none of the four of that property's description is left out.
std::vector<TReason> AbsencesOf(const TCIMInstance& instance);

/// What an instance tells of where its values came from, and of why others are missing.
class TProvenance {
public:
    explicit TProvenance(const TCIMInstance& instance);

    /// Empty if it is not told. Names in any case.
    std::string SourceOf(const std::string& property) const { return Find(fSources, property); }
    /// "no permission: /sys/...", or empty if it is not told.
    std::string AbsenceOf(const std::string& property) const { return Find(fAbsences, property); }

private:
    using TNotes = std::map<std::string, std::string, TNameLess>;

    static TNotes Read(const TCIMInstance& instance, const char* companion);
    static std::string Find(const TNotes& notes, const std::string& property);

    TNotes fSources;
    TNotes fAbsences;
};

#endif
