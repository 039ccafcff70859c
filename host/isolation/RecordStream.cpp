#include "isolation/RecordStream.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>

namespace {

// Of address space, tried in turn; memory is used only as it is filled. The smaller ones are for systems that limit
// address space.
constexpr size_t kSizes[] = {size_t{1} << 30, size_t{64} << 20, size_t{8} << 20};

char* Map(size_t& size) {
    for (const size_t wanted : kSizes) {
        void* const memory =
            mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED) continue;
        size = wanted;
        return static_cast<char*>(memory);
    }
    throw std::system_error(errno, std::generic_category(), "no memory to share with a plugin's process");
}

}  // namespace

TSharedMemory::TSharedMemory() : fStart(Map(fSize)) {}
TSharedMemory::~TSharedMemory() { munmap(fStart, fSize); }

void TSharedMemory::HideFromChildren() const { madvise(fStart, fSize, MADV_DONTFORK); }

TRecordStream::TRecordStream() : fHeader(new (fMemory.Start()) THeader{}) {}

void TRecordStream::Begin(ERecord kind) {
    fCursor = fRecord;
    PutNumber(uint32_t{0});
    PutNumber(kind);
}

void TRecordStream::Commit() {
    const uint32_t length = static_cast<uint32_t>(fCursor - fRecord - sizeof(uint32_t));
    std::memcpy(Start() + fRecord, &length, sizeof length);
    fRecord = fCursor;
    fHeader->committed.store(fRecord);
}

void TRecordStream::Put(const void* bytes, size_t count) {
    if (Capacity() - fCursor < count) EndAsFull();
    if (count != 0) std::memcpy(Start() + fCursor, bytes, count);
    fCursor += count;
}

void TRecordStream::PutText(std::string_view text) {
    PutNumber(static_cast<uint32_t>(text.size()));
    Put(text.data(), text.size());
}

void TRecordStream::SetCurrentClass(std::string_view name) {
    const size_t length = name.copy(fHeader->currentClass, sizeof fHeader->currentClass - 1);
    fHeader->currentClass[length] = '\0';
}

std::string TRecordStream::CurrentClass() const {
    const std::string bytes(fHeader->currentClass, sizeof fHeader->currentClass);
    return bytes.substr(0, bytes.find('\0'));
}

std::string_view TRecordStream::Records() const {
    const uint64_t length = fHeader->committed.load();
    return {Start(), length <= Capacity() ? length : 0};
}

void TRecordStream::EndAsFull() {
    fHeader->full.store(true);
    _exit(1);
}

std::string_view TRecordReader::Take(size_t count) {
    if (count > fRest.size()) throw TRecordError();
    const std::string_view bytes = fRest.substr(0, count);
    fRest.remove_prefix(count);
    return bytes;
}

std::string TRecordReader::TakeText() { return std::string(Take(TakeNumber<uint32_t>())); }

TRecordReader TRecordReader::TakeRecord(ERecord& kind) {
    TRecordReader record(Take(TakeNumber<uint32_t>()));
    kind = record.TakeNumber<ERecord>();
    return record;
}
