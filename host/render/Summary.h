#ifndef KYR_HOST_RENDER_SUMMARY_H
#define KYR_HOST_RENDER_SUMMARY_H

#include <string>
#include <vector>

#include "base/Output.h"

class TContainer;

/// The names of the classes that a summary is made of.
std::vector<std::string> SummaryClasses();

/// Prints on one screen what machine it is, what is in it, and what is missing of that and why. Lines have at most 80
/// columns, also in a file or a pipe, unless the output has another width.
void PrintSummary(const TContainer& container, TOutput& output);

#endif
