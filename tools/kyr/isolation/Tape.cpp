#include "isolation/Tape.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>

namespace {

// Of address space; memory is taken as it is filled. The smaller ones are for machines that count it all the same.
constexpr size_t kSizes[] = {size_t{1} << 30, size_t{64} << 20, size_t{8} << 20};

void* Map(size_t& size) {
    for (const size_t wanted : kSizes) {
        void* const memory =
            mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED) continue;
        size = wanted;
        return memory;
    }
    throw std::system_error(errno, std::generic_category(), "no memory to share with a plugin's process");
}

}  // namespace

TTape::TTape() { fHeader = new (Map(fSize)) THeader{}; }
TTape::~TTape() { munmap(fHeader, fSize); }

void TTape::Hide() const { madvise(fHeader, fSize, MADV_DONTFORK); }

void TTape::Begin(EFrame kind) {
    fCursor = fFrame;
    PutNumber(uint32_t{0});
    PutNumber(kind);
}

void TTape::Commit() {
    const uint32_t length = static_cast<uint32_t>(fCursor - fFrame - sizeof(uint32_t));
    std::memcpy(Start() + fFrame, &length, sizeof length);
    fFrame = fCursor;
    fHeader->committed.store(fFrame);
}

void TTape::Put(const void* bytes, size_t count) {
    if (fSize - sizeof(THeader) - fCursor < count) Overflow();
    if (count != 0) std::memcpy(Start() + fCursor, bytes, count);
    fCursor += count;
}

void TTape::PutText(std::string_view text) {
    PutNumber(static_cast<uint32_t>(text.size()));
    Put(text.data(), text.size());
}

void TTape::SetInHand(std::string_view name) {
    const size_t length = name.copy(fHeader->inHand, sizeof fHeader->inHand - 1);
    fHeader->inHand[length] = '\0';
}

std::string TTape::InHand() const { return {fHeader->inHand, strnlen(fHeader->inHand, sizeof fHeader->inHand)}; }

std::string_view TTape::Frames() const {
    const uint64_t length = fHeader->committed.load();
    return {Start(), length <= fSize - sizeof(THeader) ? length : 0};
}

void TTape::Overflow() {
    fHeader->full.store(true);
    _exit(1);
}

std::string_view TTapeReader::Take(size_t count) {
    if (count > fRest.size()) throw TTapeError();
    const std::string_view bytes = fRest.substr(0, count);
    fRest.remove_prefix(count);
    return bytes;
}

std::string TTapeReader::TakeText() { return std::string(Take(TakeNumber<uint32_t>())); }

TTapeReader TTapeReader::TakeFrame(EFrame& kind) {
    TTapeReader frame(Take(TakeNumber<uint32_t>()));
    kind = frame.TakeNumber<EFrame>();
    return frame;
}
