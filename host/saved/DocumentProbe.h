#ifndef KYR_HOST_SAVED_DOCUMENTPROBE_H
#define KYR_HOST_SAVED_DOCUMENTPROBE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/TimePoint.h"
#include "model/Reason.h"

/// What reading documents may take.
struct TProbeLimits {
    double secondsForEach = 30;
    TTimePoint latest = TTimePoint::max();
    size_t memory = SIZE_MAX / 2;  ///< bytes for all of them; one gets at most an eighth of what is left
};

/// Raised by a function that reads a document which is larger than its caller wants.
class TTooLarge {};

/// Tries documents in a child process before this process reads them, since the core's reader can be made to crash, to
/// go on for ever, or to take all memory. Gives for each, in the order of the paths, why it must not be read:
/// eDocumentHarmful or eDocumentTooLarge; eNone for one that the reader takes or refuses. The function reads one
/// document; what it stores and logs is lost with the child.
std::vector<TReason> ProbeDocuments(const std::vector<std::string>& paths,
                                    const std::function<void(const std::string& path)>& read,
                                    const TProbeLimits& limits = TProbeLimits());

#endif
