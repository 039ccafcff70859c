#ifndef KYR_HOST_EXPORT_CELLTEXT_H
#define KYR_HOST_EXPORT_CELLTEXT_H

#include <string>

#include "export/RunSink.h"

/// The cell as data bases and programs that read text take it: digits, "true", "NaN", "-Infinity". Of a reference the
/// object path. Empty if it is null.
std::string TextOfCell(const TCell& cell, EColumn kind);

#endif
