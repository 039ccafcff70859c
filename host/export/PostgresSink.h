#ifndef KYR_HOST_EXPORT_POSTGRESSINK_H
#define KYR_HOST_EXPORT_POSTGRESSINK_H

#include <cstddef>
#include <memory>

#include "base/Output.h"
#include "export/RunSink.h"

/// Writes a text for psql, which loads the runs into a PostgreSQL data base in one transaction. What depends on the
/// runs that are stored there is decided there: which hosts they are of, which of them are wanted, and which names
/// tables and columns have.
std::unique_ptr<IRunSink> MakePostgresSink(TOutput& output, size_t keepRuns);

#endif
