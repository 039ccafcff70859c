#ifndef KYR_HOST_ISOLATION_CHILDLOG_H
#define KYR_HOST_ISOLATION_CHILDLOG_H

class TRecordStream;

/// Moves what was logged to the stream: errors and warnings, or all of it.
void PutLog(TRecordStream& stream, bool all);

/// Has the same done when the process crashes, is told to end or exits, and notes how far the loading had come.
void SaveLogAtEnd(TRecordStream& stream, bool all);

#endif
