#ifndef KYR_HOST_SAVED_STREAMEDFILE_H
#define KYR_HOST_SAVED_STREAMEDFILE_H

#include <string>

#include "base/Descriptor.h"

/// A saved collection that comes from a pipe or elsewhere where it can be read only once, or whose name does not say
/// whether it is compressed. It is held in memory,
/// uncompressed, since the core's reader opens files by their names and tells by the name whether they are compressed.
class TStreamedFile {
public:
    /// Whether the path stands for a stream of this process: "-", /dev/stdin, or a descriptor, as a shell gives it for
    /// "<(command)".
    static bool IsStream(const std::string& path);
    static bool IsStandardInput(const std::string& path);
    /// Reads the stream to its end, or as far as the core's reader takes a document. Raises TCommandError with
    /// eExitNothing if it cannot be read, or is a compressed file that is damaged or cut off.
    explicit TStreamedFile(const std::string& path);

    /// By which it can be opened as long as this object lives.
    std::string Path() const { return "/proc/self/fd/" + std::to_string(fMemory.Number()); }
    /// What messages call the stream.
    static std::string NameOf(const std::string& path);

private:
    const TDescriptor fMemory;
};

#endif
