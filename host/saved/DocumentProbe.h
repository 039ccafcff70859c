#ifndef KYR_HOST_SAVED_DOCUMENTPROBE_H
#define KYR_HOST_SAVED_DOCUMENTPROBE_H

#include <functional>
#include <string>
#include <vector>

#include "base/TimePoint.h"

/// Tries documents in a child process before this process reads them, since the core's reader can be made to crash or
/// to go on for ever. Gives for each, in the order of the paths, why it must not be read; empty for one that the reader
/// takes or refuses. The function reads one document; what it stores and logs is lost with the child.
std::vector<std::string> ProbeDocuments(const std::vector<std::string>& paths,
                                        const std::function<void(const std::string& path)>& read,
                                        double secondsForEach = 30, TTimePoint latest = TTimePoint::max());

#endif
