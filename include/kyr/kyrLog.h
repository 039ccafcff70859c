/**
 * @file
 * Severities of log entries; lower is graver. Entries up to the log's threshold count, those above it are dropped.
 *
 * A line of the log file is "KYR_", the name of the plugin (or "Core") and ": ", a tag such as "[Error] ", and the
 * text; it has no time. Without a log file nothing is printed. A host reads the entries in memory with ILogger::GetLog.
 *
 * Any other number that passes the threshold raises a C++ exception with kyrStatusFail.
 */
#ifndef KYR_LOG_H
#define KYR_LOG_H

/** The lower the number, the graver. */
#ifdef __cplusplus
enum kyrLogSeverity : int {
#else
typedef enum kyrLogSeverity {
#endif
    /** A call was refused, a plugin failed, a document cannot be read. */
    kyrLogError = 0,
    /** For plugins and hosts, as is the next; the core itself writes neither. */
    kyrLogWarning = 1,
    /** The threshold that a new logger starts with. */
    kyrLogStatus = 2,
    /** What the core does: libraries loaded, classes asked for, repeated declarations, words that cannot be used. */
    kyrLogDebug = 3,
    /** Every class and property that a plugin delivers. Printed, never kept in memory. */
    kyrLogVerbose = 4,
    /** Kept in memory whatever the threshold, never printed. */
    kyrLogMemoryOnly = 100
#ifdef __cplusplus
};
#else
} kyrLogSeverity;
#endif

#endif
