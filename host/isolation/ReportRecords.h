#ifndef KYR_HOST_ISOLATION_REPORTRECORDS_H
#define KYR_HOST_ISOLATION_REPORTRECORDS_H

#include <string>
#include <string_view>
#include <vector>

#include "kyr/ILogger.h"

class TCIMClass;
class TRecordStream;
struct TCallFailure;
struct TPluginReport;
struct TRefusedCall;

// The records for all that a plugin's process reports but the instances: what was loaded, what was logged, and how its
// data entry was called.

/// The plugins that the library registered, and what loading it raised.
void PutPlugins(TRecordStream& stream, const TPluginReport& report);
/// The data entry is about to be called for these classes.
void PutDataCall(TRecordStream& stream, const std::vector<TCIMClass*>& classes);
/// It has returned; the failure is empty if it went well.
void PutDataCallEnd(TRecordStream& stream, const TCallFailure& failure);
/// Allocates nothing, so that it can be called while the heap is locked or damaged.
void PutLogLine(TRecordStream& stream, const ILogger::TLogEntry& entry);

/// The core refused a call. To be put behind the lines that were logged about it.
void PutRefusedCall(TRecordStream& stream, const TRefusedCall& call);

/// Fills the report from the records, passing over instances. False if there is something else among them, or more than
/// the limits for one plugin allow; the report has what came before that.
bool ReadReport(std::string_view records, TPluginReport& report);

#endif
