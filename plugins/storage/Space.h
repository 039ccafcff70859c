#ifndef KYR_PLUGINS_STORAGE_SPACE_H
#define KYR_PLUGINS_STORAGE_SPACE_H

#include <unordered_map>

#include "StorageFacts.h"

/// Asks how much space there is, but only where the kernel answers by itself: neither a file system that may wait for
/// a server is asked, nor one that is mounted below such a one, nor one whose point another mount covers.
///
/// Of a recorded machine the answers stand in /.kyr/statvfs, a line for each mount point:
///     <mount point>\t<bsize> <frsize> <blocks> <bfree> <bavail> <files> <ffree>
/// The point is written as in /proc/self/mountinfo ("\040" for a blank), the numbers are those of statvfs(3).
class TSpaceReader {
public:
    TSpaceReader(const TSystemRoot& root, const std::vector<TMount>& mounts);

    TFact<TSpace> Ask(const TMount& mount) const;

private:
    /// Null if the mount may be asked.
    const char* FindObstacle(const TMount& mount) const;
    TFact<TSpace> FindRecorded(const TMount& mount) const;

    const TSystemRoot& fRoot;
    std::unordered_map<std::string, const TMount*> fMounts;  ///< by their ids
    std::unordered_map<std::string, TSpace> fRecorded;       ///< by mount point
};

std::unordered_map<std::string, TSpace> ParseRecordedSpace(std::string_view text);

#endif
