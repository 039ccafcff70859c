#ifndef KYR_HOST_RENDER_FINDINGSTEXT_H
#define KYR_HOST_RENDER_FINDINGSTEXT_H

#include "base/Output.h"
#include "check/Findings.h"

/// Prints each finding without an excuse in the form of compilers, "file:line: error: text [S03]", with the remedy in a
/// line below it.
void PrintFindings(const TFindings& findings, TOutput& output);
/// Prints id, level and title of all rules.
void PrintRules(TOutput& output);
/// Prints one rule in full.
void PrintRule(const TRule& rule, TOutput& output);

#endif
