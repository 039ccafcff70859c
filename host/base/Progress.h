#ifndef KYR_HOST_BASE_PROGRESS_H
#define KYR_HOST_BASE_PROGRESS_H

#include <cstddef>
#include <string>
#include <vector>

#include "base/TimePoint.h"

/// One line on standard error, if that is a terminal: how many plugins are done, how long it has taken, which run. It
/// is shown only after 150 ms, and erased in the end.
class TProgress {
public:
    explicit TProgress(size_t count);
    ~TProgress() { Erase(); }
    TProgress(const TProgress&) = delete;
    TProgress& operator=(const TProgress&) = delete;

    /// So many more are done.
    void Count(size_t ended) { fDone += ended; }
    /// When the line is to be shown next.
    TTimePoint NextMoment() const { return fNext; }
    /// Does nothing before that moment.
    void Show(TTimePoint now, const std::vector<std::string>& running);
    void Erase();

private:
    const size_t fCount;
    size_t fDone = 0;
    bool fShown = false;
    const TTimePoint fStart = TClock::now();
    TTimePoint fNext;
};

#endif
