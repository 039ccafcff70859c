#ifndef KYR_HOST_CHECK_RUNRULES_H
#define KYR_HOST_CHECK_RUNRULES_H

#include <string>
#include <vector>

#include "check/Findings.h"

class TCIMClass;
class TCIMInstance;
class TContainer;

/// What is reported as what: the classes that are looked at, and the file that findings are about.
struct TReported {
    const TContainer& container;
    std::vector<TCIMClass*> classes;
    std::string file;
    std::vector<const TCIMInstance*> plugins = {};  ///< the states of the plugins of the library, in a run of it
    bool isSaved = false;                           ///< perhaps without what is Volatile
};

/// The rules about instances: R04 to R09, and R18.
void CheckInstances(const TReported& reported, TFindings& findings);
/// What became of the plugins and their classes while they were collected: R01, R03, R15 and R17.
void CheckOutcomes(const TReported& reported, TFindings& findings);
/// What differs in a second run: R10.
void CompareRuns(const TReported& reported, const TContainer& second, TFindings& findings);
/// What two whole runs report and one does not that was asked for some of the classes: R11.
void CompareWithPart(const TReported& reported, const TContainer& second, const TContainer& part, TFindings& findings);

#endif
