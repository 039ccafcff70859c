/* Severities of log entries; lower is graver. */
#ifndef KYR_LOG_H
#define KYR_LOG_H

#ifdef __cplusplus
enum kyrLogSeverity : int {
#else
typedef enum kyrLogSeverity {
#endif
    kyrLogError = 0,
    kyrLogWarning = 1,
    kyrLogStatus = 2, /* the threshold that a new logger starts with */
    kyrLogDebug = 3,
    kyrLogVerbose = 4,     /* printed, never kept in memory */
    kyrLogMemoryOnly = 100 /* kept in memory whatever the threshold, never printed */
#ifdef __cplusplus
};
#else
} kyrLogSeverity;
#endif

#endif
