#ifndef KYR_HOST_ISOLATION_RECORDSTREAM_H
#define KYR_HOST_ISOLATION_RECORDSTREAM_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What a plugin's process is doing.
enum class EPhase : uint32_t {
    eLoading,
    eConstructing,
    eInitialising,
    eDescribing,
    eOrdinary,
    eAssociations,
    eExiting
};

enum class ERecord : uint8_t { ePlugin, eLoadFailure, eLogLine, eDataCall, eInstance, eDataCallEnd, eRefusedCall };

/// Memory that the host shares with a process that it forks. No process can change the size of it: a host that reads
/// memory which was cut off would be ended by SIGBUS.
class TSharedMemory {
public:
    static constexpr size_t kLargest = size_t{64} << 20;

    /// Of that size if the system gives so much, and smaller otherwise. Raises std::system_error.
    explicit TSharedMemory(size_t most);
    ~TSharedMemory();
    TSharedMemory(const TSharedMemory&) = delete;
    TSharedMemory& operator=(const TSharedMemory&) = delete;

    char* Start() const { return fStart; }
    size_t Size() const { return fSize; }
    /// Processes that are forked from now on do not get this memory.
    void HideFromChildren() const;
    /// Gives the pages from the first offset to the second back to the system. They are read as zeros from then on.
    void Release(size_t from, size_t to) const;
    /// Gives back all that is behind the first bytes, which this process can reach no more.
    void Trim(size_t size);

private:
    size_t fSize = 0;
    char* fStart = nullptr;
};

/// Records that a plugin's process writes into shared memory while the host reads them. Committed records
/// stay, however that process ends, and the plugin gets no descriptor that it could close or write to.
class TRecordStream {
public:
    /// Takes at most that many bytes. Raises std::system_error.
    explicit TRecordStream(size_t most = TSharedMemory::kLargest);

    void HideFromChildren() const { fMemory.HideFromChildren(); }

    // For the plugin's process. A record is what is put between Begin and Commit; a second Begin drops a record
    // that was not committed. When the memory is used up, Put ends the process.
    void Begin(ERecord kind);
    void Commit();
    void Put(const void* bytes, size_t count);
    void PutText(std::string_view text);
    template <typename TNumber>
    void PutNumber(TNumber number) {
        Put(&number, sizeof number);
    }
    /// Notes what the process is doing, for the case that it ends there.
    void SetPhase(EPhase phase) { fHeader->phase.store(phase); }
    /// The class that the process is filling.
    void SetCurrentClass(std::string_view name);

    // For the host. The plugin can write anything anywhere in the memory, at any time, so that none of this is more
    // than what the plugin's process says.
    EPhase Phase() const { return fHeader->phase.load(); }
    std::string CurrentClass() const;
    /// The process ended because there was no room for another record.
    bool IsFull() const { return fHeader->full.load() != 0; }
    /// The bytes of the committed records, within the memory in any case. They may still change.
    std::string_view Records() const;
    /// Those before the offset are not needed any more. They must not be read again.
    void Release(size_t offset);
    /// What is committed from now on does not count, and its memory is given back.
    void Close();
    /// The bytes of records that are still in memory.
    size_t BytesHeld() const { return Records().size() - std::min(fReleased, Records().size()); }

private:
    struct THeader {
        std::atomic<uint64_t> committed;  // bytes
        std::atomic<EPhase> phase;
        std::atomic<uint8_t> full;  // a bool must not have other values, which the plugin can write
        char currentClass[256];
    };

    char* Start() const { return fMemory.Start() + sizeof(THeader); }
    size_t Capacity() const { return fMemory.Size() - sizeof(THeader); }
    [[noreturn]] void EndAsFull();

    TSharedMemory fMemory;
    THeader* const fHeader;
    std::optional<size_t> fEnd;  // bytes of records, once it is closed
    size_t fReleased = 0;        // bytes of records, at least
    size_t fRecord = 0;          // where the record begins
    size_t fCursor = 0;          // where the next byte goes
};

/// Raised when bytes are not the records that they should be.
class TRecordError {};

/// Reads records from bytes that another process may have damaged, or be changing: it never reads beyond them, and
/// looks at each byte only once.
class TRecordReader {
public:
    explicit TRecordReader(std::string_view bytes) : fRest(bytes) {}

    bool IsAtEnd() const { return fRest.empty(); }
    size_t BytesLeft() const { return fRest.size(); }
    std::string TakeText();
    void TakeText(std::string& text);
    template <typename TNumber>
    TNumber TakeNumber() {
        TNumber number{};
        Take(sizeof number).copy(reinterpret_cast<char*>(&number), sizeof number);
        // Without it the compiler may read the bytes again where the number is used, which may be another one by then.
        std::atomic_signal_fence(std::memory_order_acq_rel);
        return number;
    }
    /// The next record.
    TRecordReader TakeRecord(ERecord& kind);

private:
    std::string_view Take(size_t count);

    std::string_view fRest;
};

#endif
