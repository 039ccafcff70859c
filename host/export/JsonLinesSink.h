#ifndef KYR_HOST_EXPORT_JSONLINESSINK_H
#define KYR_HOST_EXPORT_JSONLINESSINK_H

#include <memory>

#include "base/Output.h"
#include "export/RunSink.h"

/// Writes each row as one line of JSON, and one line for each run. The values stand in an object that is named as the
/// table, so that no name means a number in one line and a text in another.
std::unique_ptr<IRunSink> MakeJsonLinesSink(TOutput& output);

#endif
