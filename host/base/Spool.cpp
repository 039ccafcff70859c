#include "base/Spool.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/ExitStatus.h"

TSpool::TSpool() : fFile(std::tmpfile(), std::fclose) {
    if (fFile == nullptr) Fail("make");
}

void TSpool::Write(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), fFile.get()) != bytes.size()) Fail("write");
    fSize += bytes.size();
}

void TSpool::Truncate(size_t size) {
    const auto end = static_cast<off_t>(size);
    const bool isDone = std::fflush(fFile.get()) == 0 && ftruncate(fileno(fFile.get()), end) == 0 &&
                        fseeko(fFile.get(), end, SEEK_SET) == 0;
    if (!isDone) Fail("write");
    fSize = size;
}

void TSpool::Rewind() {
    if (std::fflush(fFile.get()) != 0 || fseeko(fFile.get(), 0, SEEK_SET) != 0) Fail("write");
}

std::string TSpool::Read(size_t size) {
    std::string bytes(size, '\0');
    bytes.resize(std::fread(bytes.data(), 1, size, fFile.get()));
    if (std::ferror(fFile.get()) != 0) Fail("read");
    return bytes;
}

std::string TSpool::Path() const { return "/proc/self/fd/" + std::to_string(fileno(fFile.get())); }

void TSpool::Fail(const char* attempt) {
    throw TCommandError(eExitOutput, std::string("cannot ") + attempt + " a temporary file: " + std::strerror(errno));
}
