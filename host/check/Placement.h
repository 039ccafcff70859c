#ifndef KYR_HOST_CHECK_PLACEMENT_H
#define KYR_HOST_CHECK_PLACEMENT_H

#include <string>
#include <vector>

#include "check/Findings.h"
#include "states/LibraryPlace.h"

/// A plugin's library that a host does not find, or whose document it does not.
struct TMisplacement {
    EMisplacement what;
    std::string path;
    std::string right;  ///< path
};

/// What is wrong with the name of the library or of its folder: L04, L10 and L11.
std::vector<TMisplacement> FindMisnaming(const std::string& library);
/// The libraries below the folder where no host looks for them, and those with the wrong ending: L09 and L10. The
/// folder is a plugin folder, or if that cannot be the folder of one plugin.
std::vector<TMisplacement> FindMisplaced(const std::string& folder);
/// In the words of kyr collect.
void AddMisplacement(const TMisplacement& misplacement, TFindings& findings);

#endif
