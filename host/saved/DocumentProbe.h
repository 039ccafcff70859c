#ifndef KYR_HOST_SAVED_DOCUMENTPROBE_H
#define KYR_HOST_SAVED_DOCUMENTPROBE_H

#include <functional>
#include <string>
#include <vector>

#include "base/TimePoint.h"

/// Reads the documents one after the other in a child process and gives for each, in the order of the paths, why it
/// must not be read here: the reader would crash or go on for ever. Empty for a document that is read or refused in
/// an orderly way, which reading it here then shows. The function sees the container as it is now, and the child's
/// copy of it alone is filled; the child's log is dropped.
std::vector<std::string> ProbeDocuments(const std::vector<std::string>& paths,
                                        const std::function<void(const std::string& path)>& read,
                                        double secondsForEach = 30, TTimePoint latest = TTimePoint::max());

#endif
