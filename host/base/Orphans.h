#ifndef KYR_HOST_BASE_ORPHANS_H
#define KYR_HOST_BASE_ORPHANS_H

#include <sys/types.h>

#include <vector>

/// What plugins leave behind: while this object lives, a process whose parent has gone becomes a child of ours, and
/// at its end all of them are ended. Children that were there before are left alone.
class TOrphans {
public:
    TOrphans();
    ~TOrphans();
    TOrphans(const TOrphans&) = delete;
    TOrphans& operator=(const TOrphans&) = delete;

    /// When no other child is there.
    void EndAll() const;

private:
    std::vector<pid_t> fExisting;
};

#endif
