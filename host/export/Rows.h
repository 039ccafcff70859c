#ifndef KYR_HOST_EXPORT_ROWS_H
#define KYR_HOST_EXPORT_ROWS_H

#include <string>
#include <vector>

#include "export/RunSink.h"

class TClassTables;
class TContainer;

/// The run that a collection is: its host, its time and its state. Fingerprint and file are left to the caller, and the
/// time too, if the collection has none.
TRun RunOf(const TContainer& container);

/// Those of the names, spoken or not, that are of a class of the collection.
std::vector<std::string> KnownClasses(const TContainer& container, const std::vector<std::string>& names);

/// What rows are wanted, and how.
struct TRowOptions {
    std::vector<std::string> classes = {};  ///< these and their subclasses, also by spoken names; empty: all
    bool paths = false;                     ///< of all references
};

/// Hands tables and rows of the collection to the sink, between its Begin and End: for the classes, which need not be
/// known in it, those of each class in the order of the collection; and those of class_state. The tables must stay as
/// long as the sink may use them.
void WriteRows(const TContainer& container, const TRowOptions& options, TClassTables& tables, IRunSink& sink);

#endif
