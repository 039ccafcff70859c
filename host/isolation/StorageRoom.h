#ifndef KYR_HOST_ISOLATION_STORAGEROOM_H
#define KYR_HOST_ISOLATION_STORAGEROOM_H

#include <chrono>
#include <cstddef>

/// How often the host goes through what the plugins have delivered. What one plugin delivers must not take the room of
/// the others, so in the first pass each can fill only a small part of it, and the large ones get what is left then.
enum class EPass { eSmallParts, eRest, eAssociations };

/// How much the host still stores: bytes, as they would stand in a saved file, and once the run was stopped, time too.
/// A plugin gets a part of what is left, so that something is left for each that follows.
class TStorageRoom {
public:
    using TTime = std::chrono::nanoseconds;

    /// With classes whose documents have so many bytes, the rest of what one saved file can hold; less if the address
    /// space of this process is limited.
    explicit TStorageRoom(size_t schemaBytes);

    size_t Bytes() const { return fBytes; }
    /// What one plugin may take of them in that pass.
    size_t BytesFor(EPass pass) const;
    void TakeBytes(size_t count) { fBytes -= count; }

    /// The run was stopped, and storing must come to an end.
    void Stop() { fIsStopped = true; }
    bool IsStopped() const { return fIsStopped; }
    /// The time for one more plugin, once it was stopped.
    TTime TimeForOne() const { return fTime / 2; }
    void TakeTime(TTime time) { fTime -= time; }

private:
    size_t fBytes;
    size_t fForAssociations;  // kept back until their pass
    bool fIsStopped = false;
    TTime fTime = std::chrono::seconds(1);
};

#endif
