#ifndef KYR_HOST_EXPORT_SQLITESINK_H
#define KYR_HOST_EXPORT_SQLITESINK_H

#include <cstddef>
#include <memory>
#include <string>

#include "export/RunSink.h"

/// A SQLite data base that keeps for each host its last runs. Raises TCommandError with eExitOutput for a file that
/// cannot be written, or is none that this class has made.
std::unique_ptr<IRunSink> OpenSqliteSink(const std::string& path, size_t keepRuns);

#endif
