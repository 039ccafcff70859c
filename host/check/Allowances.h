#ifndef KYR_HOST_CHECK_ALLOWANCES_H
#define KYR_HOST_CHECK_ALLOWANCES_H

#include <set>
#include <string>
#include <vector>

#include "check/Check.h"
#include "check/Findings.h"
#include "check/Markup.h"

// What suppresses findings, with a reason. In a document, a comment in front of the element:
//
//     <!-- kyr-check S19: the standard has no description of it either -->
//
// In a file kyr-check.allow beside documents, libraries or collections, a line for each:
//
//     S19 EX_Pool.Size: the standard has no description of it either
//
// In place of Class.Property it may say Class (with all of its properties), the name of a file, or * for all that is in
// the folder. Empty lines and those that begin with # mean nothing.

constexpr const char* kAllowFile = "kyr-check.allow";

/// Adds those of the document's comments.
void AddAllowances(const TMarkup& markup, TFindings& findings);
/// Adds those of the file in the folder, if there is one, and what is wrong with it.
void AddAllowances(const std::string& folder, TFindings& findings);

/// Gives each finding that is allowed its excuse, and adds findings about what allows nothing. Of a rule for a kind of
/// files none of which was checked nobody knows.
void ApplyAllowances(const std::vector<TTarget>& targets, TFindings& findings);

#endif
