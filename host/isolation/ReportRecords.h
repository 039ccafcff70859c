#ifndef KYR_HOST_ISOLATION_REPORTRECORDS_H
#define KYR_HOST_ISOLATION_REPORTRECORDS_H

class TRecordStream;
struct TPluginReport;

/// Fills the report with all that a plugin's process put on the stream, but for the instances. False if something else
/// stands there.
bool ReadReport(const TRecordStream& stream, TPluginReport& report);

#endif
