#ifndef KYR_HOST_CHECK_READERTRIAL_H
#define KYR_HOST_CHECK_READERTRIAL_H

#include <string>
#include <vector>

/// Lets the core's reader read the document, behind the others, in a process of its own. Returns what it says if it
/// refuses it, cannot end, or takes fewer classes than that; empty if all is well. Refusals of the others are not told.
std::string TryReader(const std::vector<std::string>& others, const std::string& document, size_t classes);

#endif
