#ifndef KYR_HOST_BASE_NATURALORDER_H
#define KYR_HOST_BASE_NATURALORDER_H

#include <string_view>

/// Whether the first text stands before the second as people count: "cpu2" before "cpu10", and the disk "sdb" before
/// "sdaa". Words of hexadecimal digits that are equally long are compared as they are, since "0a" follows "09".
bool IsNaturallyLess(std::string_view a, std::string_view b);

#endif
