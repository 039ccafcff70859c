#ifndef TAPEREPORT_H
#define TAPEREPORT_H

#include <string>

class TContainer;
class TTape;
struct TLibrary;
struct TPluginReport;

/// Fills the report with all that a plugin's process put on the tape, but for the instances. False if something else
/// stands there.
bool ReadReport(const TTape& tape, TPluginReport& report);

/// Stores the instances of one pass in the container. What cannot be stored is noted in the report.
void MergeInstances(const TTape& tape, bool associations, TContainer& container, TPluginReport& report);

#endif
