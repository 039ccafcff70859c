#include "isolation/RecordStream.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>
#include <system_error>

#include "base/Descriptor.h"
#include "base/Memory.h"

namespace {

// How many bytes of address space to map, tried in turn; memory is used only as it is filled. The smaller sizes are for
// systems that limit address space or the size of files.
constexpr size_t kSizes[] = {TSharedMemory::kLargest, size_t{16} << 20, size_t{4} << 20, size_t{1} << 20};

// Several streams are mapped at a time, and must leave most of the address space to what is read from them.
constexpr size_t kPartOfAddressSpace = 32;

constexpr size_t kReleasedAtOnce = size_t{1} << 20;

constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

// Whether files may grow to that size, if need be once the limit of the user (ulimit -f) is lifted, as far as that is
// allowed. Beyond the limit ftruncate would not fail, but end this process by SIGXFSZ.
bool AllowFileSize(size_t size, const rlimit& limit) {
    const rlimit none{RLIM_INFINITY, RLIM_INFINITY}, most{limit.rlim_max, limit.rlim_max};
    return size <= limit.rlim_cur || setrlimit(RLIMIT_FSIZE, &none) == 0 ||
           (size <= limit.rlim_max && setrlimit(RLIMIT_FSIZE, &most) == 0);
}

bool SetFileSize(int file, size_t size) {
    rlimit before{};
    if (getrlimit(RLIMIT_FSIZE, &before) != 0) return false;
    const bool isSet = AllowFileSize(size, before) && ftruncate(file, static_cast<off_t>(size)) == 0;
    setrlimit(RLIMIT_FSIZE, &before);
    return isSet;
}

void* MapSealed(size_t size) {
    const TDescriptor file(memfd_create("kyr-records", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (file.Number() < 0 || !SetFileSize(file.Number(), size)) return MAP_FAILED;
    if (fcntl(file.Number(), F_ADD_SEALS, kSeals) != 0) return MAP_FAILED;
    return mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_NORESERVE, file.Number(), 0);
}

// For systems without memfd, and for users who may not have files of such a size. A plugin can shrink this memory only
// if it may open /proc/self/map_files, which takes the rights of the superuser, who has no such limits.
void* MapAnonymous(size_t size) {
    return mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
}

char* Map(size_t most, size_t& size) {
    for (void* (*map)(size_t) : {MapSealed, MapAnonymous}) {
        for (const size_t wanted : kSizes) {
            if (wanted > most && wanted != *std::rbegin(kSizes)) continue;
            void* const memory = map(wanted);
            if (memory == MAP_FAILED) continue;
            size = wanted;
            return static_cast<char*>(memory);
        }
    }
    throw std::system_error(errno, std::generic_category(), "no memory to share with a plugin's process");
}

}  // namespace

TSharedMemory::TSharedMemory(size_t most)
    : fStart(Map(std::min(most, AddressSpaceLimit() / kPartOfAddressSpace), fSize)) {}
TSharedMemory::~TSharedMemory() { munmap(fStart, fSize); }

void TSharedMemory::HideFromChildren() const { madvise(fStart, fSize, MADV_DONTFORK); }

void TSharedMemory::Release(size_t from, size_t to) const {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t first = (from + page - 1) / page * page, end = to / page * page;
    if (first < end) madvise(fStart + first, end - first, MADV_REMOVE);
}

void TSharedMemory::Trim(size_t size) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t end = (size + page - 1) / page * page;
    if (end >= fSize) return;
    munmap(fStart + end, fSize - end);
    fSize = end;
}

TRecordStream::TRecordStream(size_t most) : fMemory(most), fHeader(new (fMemory.Start()) THeader{}) {}

void TRecordStream::Close() {
    fEnd = Records().size();
    fMemory.Trim(sizeof(THeader) + *fEnd);
}

void TRecordStream::Release(size_t offset) {
    if (offset < fReleased + kReleasedAtOnce) return;
    fMemory.Release(sizeof(THeader) + fReleased, sizeof(THeader) + offset);
    fReleased = offset;
}

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
    const uint64_t length = fEnd ? *fEnd : fHeader->committed.load();
    return {Start(), length <= Capacity() ? length : 0};
}

void TRecordStream::EndAsFull() {
    fHeader->full.store(1);
    _exit(1);
}

std::string_view TRecordReader::Take(size_t count) {
    if (count > fRest.size()) throw TRecordError();
    const std::string_view bytes = fRest.substr(0, count);
    fRest.remove_prefix(count);
    return bytes;
}

std::string TRecordReader::TakeText() { return std::string(Take(TakeNumber<uint32_t>())); }

void TRecordReader::TakeText(std::string& text) { text = Take(TakeNumber<uint32_t>()); }

TRecordReader TRecordReader::TakeRecord(ERecord& kind) {
    TRecordReader record(Take(TakeNumber<uint32_t>()));
    kind = record.TakeNumber<ERecord>();
    return record;
}
