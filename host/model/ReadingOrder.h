#ifndef KYR_HOST_MODEL_READINGORDER_H
#define KYR_HOST_MODEL_READINGORDER_H

#include <string>
#include <vector>

/// Whether a key of that name says only on which system an instance is, and of which class it is.
bool IsScopeKey(const std::string& name);

#endif
