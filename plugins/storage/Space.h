#ifndef KYR_PLUGINS_STORAGE_SPACE_H
#define KYR_PLUGINS_STORAGE_SPACE_H

#include <unordered_map>

#include "StorageFacts.h"

/// Reads the space of file systems by statvfs, but only where that cannot block: not of a network or user-space file
/// system, nor of one mounted below such a one. A mount that is covered by another cannot be reached.
///
/// A recorded machine has the answers in /.kyr/statvfs, one line for each mount point:
///     <mount point>\t<bsize> <frsize> <blocks> <bfree> <bavail> <files> <ffree>
/// The mount point is escaped as in /proc/self/mountinfo ("\040" for a blank); the numbers are those of statvfs(3).
class TSpaceReader {
public:
    TSpaceReader(const TSystemRoot& root, const std::vector<TMount>& mounts);

    TFact<TSpace> Ask(const TMount& mount) const;

private:
    /// Why the mount is not asked; null if it may be.
    const char* FindObstacle(const TMount& mount) const;
    TFact<TSpace> FindRecorded(const TMount& mount) const;

    const TSystemRoot& fRoot;
    std::unordered_map<std::string, const TMount*> fMounts;  ///< by id
    std::unordered_map<std::string, TSpace> fRecorded;       ///< by mount point
};

std::unordered_map<std::string, TSpace> ParseRecordedSpace(std::string_view text);

#endif
