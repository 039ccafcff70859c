#ifndef KYR_HOST_EXPORT_CSVSINK_H
#define KYR_HOST_EXPORT_CSVSINK_H

#include <memory>
#include <string>

#include "base/Output.h"
#include "export/RunSink.h"

/// Whether the name is that of class_state or change, which are tables without a class.
bool IsOwnCsvTable(const std::string& name);

/// Writes the rows of one class, or of such a table, as comma-separated values. The header has the columns of all runs,
/// so that nothing is written before Finish. A second class raises TCommandError with eExitUsage.
std::unique_ptr<IRunSink> MakeCsvSink(TOutput& output, const std::string& name);

#endif
