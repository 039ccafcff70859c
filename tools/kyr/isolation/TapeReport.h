#ifndef TAPEREPORT_H
#define TAPEREPORT_H

class TTape;
struct TPluginReport;

/// Fills the report with all that a plugin's process put on the tape, but for the instances. False if something else
/// stands there.
bool ReadReport(const TTape& tape, TPluginReport& report);

#endif
