#ifndef KYR_HOST_BASE_CSV_H
#define KYR_HOST_BASE_CSV_H

#include <string>
#include <vector>

/// The texts as one line of comma-separated values (RFC 4180), with its end.
std::string CsvLine(const std::vector<std::string>& texts);

#endif
