#ifndef KYR_HOST_BASE_STATUSWORDS_H
#define KYR_HOST_BASE_STATUSWORDS_H

#include <string>

/// The text with the name of each status of the core put in words, such as "not found (kyrStatusNotFound)". A name that
/// stands in parentheses already stays as it is.
std::string WithStatusInWords(const std::string& text);

#endif
