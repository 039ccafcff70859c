#ifndef KYR_HOST_EXPORT_ROWS_H
#define KYR_HOST_EXPORT_ROWS_H

#include <string>
#include <vector>

#include "export/RunSink.h"

class TContainer;

/// The run that a collection is: its host, its time and its state. Fingerprint and file are left to the caller, and the
/// time too, if the collection has none: then hasTime is false.
TRun RunOf(const TContainer& container);

/// Hands tables and rows of the collection to the sink, between its Begin and End: for all classes, or the named ones,
/// those of each class in the order of the collection; and those of class_state.
void WriteRows(const TContainer& container, const std::vector<std::string>& classes, IRunSink& sink);

#endif
