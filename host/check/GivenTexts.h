#ifndef KYR_HOST_CHECK_GIVENTEXTS_H
#define KYR_HOST_CHECK_GIVENTEXTS_H

#include <string>

#include "check/Findings.h"
#include "check/RunRules.h"

/// R16: texts that plugins gave as values of types whose values they are not. The core takes them for other values
/// without a word, but the log of a run with --verbose has them as they were given.
void CheckGivenTexts(const TReported& reported, const std::string& logFile, TFindings& findings);

#endif
