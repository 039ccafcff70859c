#ifndef PROVENANCE_H
#define PROVENANCE_H

#include <map>
#include <string>

#include "lookup/SameName.h"

class TCIMInstance;

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
