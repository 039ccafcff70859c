#ifndef CHILDLOG_H
#define CHILDLOG_H

class TTape;

/// Moves what was logged to the tape: errors and warnings, or all of it.
void PutLog(TTape& tape, bool all);

/// Has the same done when the process crashes, is told to end or exits, and notes how far the loading had come.
void SaveLogAtEnd(TTape& tape, bool all);

#endif
