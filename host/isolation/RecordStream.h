#ifndef KYR_HOST_ISOLATION_RECORDSTREAM_H
#define KYR_HOST_ISOLATION_RECORDSTREAM_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// What a plugin's process is at.
enum class EPhase : uint32_t {
    eLoading,
    eConstructing,
    eInitialising,
    eDescribing,
    eOrdinary,
    eAssociations,
    eExiting
};

enum class ERecord : uint8_t { ePlugin, eRefusal, eLog, eAsked, eInstance, eEnded };

/// Memory that a plugin's process shares with ours, and fills with records: nothing that was committed is lost,
/// however that process ends, and it needs no descriptor.
class TRecordStream {
public:
    /// Raises std::system_error.
    TRecordStream();
    ~TRecordStream();
    TRecordStream(const TRecordStream&) = delete;
    TRecordStream& operator=(const TRecordStream&) = delete;

    /// Keeps it from processes that are forked from now on.
    void Hide() const;

    // For the process that fills it. A record is what is put between Begin and Commit; whoever begins anew drops what
    // was begun. When the memory is used up, the process ends here.
    void Begin(ERecord kind);
    void Commit();
    void Put(const void* bytes, size_t count);
    void PutText(std::string_view text);
    template <typename TNumber>
    void PutNumber(TNumber number) {
        Put(&number, sizeof number);
    }
    /// Tells what the process is at, for the case that it ends there.
    void SetPhase(EPhase phase) { fHeader->phase.store(phase); }
    /// The class that the process is filling.
    void SetCurrentClass(std::string_view name);

    // For the other process, which believes nothing.
    EPhase Phase() const { return fHeader->phase.load(); }
    std::string CurrentClass() const;
    bool IsFull() const { return fHeader->full.load(); }
    /// The records that were committed.
    std::string_view Records() const;

private:
    struct THeader {
        std::atomic<uint64_t> committed;
        std::atomic<EPhase> phase;
        std::atomic<bool> full;
        char currentClass[256];
    };

    char* Start() const { return reinterpret_cast<char*>(fHeader + 1); }
    [[noreturn]] void Overflow();

    size_t fSize = 0;
    THeader* fHeader = nullptr;
    size_t fRecord = 0;  // where the record begins
    size_t fCursor = 0;  // where the next byte goes
};

/// Raised by a stream that does not hold what it should.
class TRecordError {};

/// Reads the bytes of a stream, and no others.
class TRecordReader {
public:
    explicit TRecordReader(std::string_view bytes) : fRest(bytes) {}

    bool IsAtEnd() const { return fRest.empty(); }
    size_t Left() const { return fRest.size(); }
    std::string_view Take(size_t count);
    std::string TakeText();
    template <typename TNumber>
    TNumber TakeNumber() {
        TNumber number{};
        Take(sizeof number).copy(reinterpret_cast<char*>(&number), sizeof number);
        return number;
    }
    /// The next record.
    TRecordReader TakeRecord(ERecord& kind);

private:
    std::string_view fRest;
};

#endif
