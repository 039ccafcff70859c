#include "saved/StreamedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "base/ExitStatus.h"
#include "base/Text.h"
#include "saved/CimXmlWriter.h"

namespace {

constexpr const char* kStandardInput = "/dev/stdin";

using TGzipFile = std::unique_ptr<gzFile_s, int (*)(gzFile)>;

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
    throw TCommandError(eExitNothing, "cannot read the collection from " + TStreamedFile::NameOf(path) + ": " + reason);
}

// zlib passes on what is not compressed.
TGzipFile Open(const std::string& path) {
    const int file =
        TStreamedFile::IsStandardInput(path) ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) Fail(path, std::strerror(errno));
    TGzipFile stream(gzdopen(file, "rb"), gzclose_r);
    if (!stream) Fail(path, "there is no memory");
    return stream;
}

bool WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

// One byte more than the reader takes is enough to be refused by it.
void Copy(const std::string& path, gzFile stream, int memory) {
    char buffer[1 << 16];
    for (size_t rest = TCimXmlWriter::kLargestDocument + 1; rest > 0;) {
        const int count = gzread(stream, buffer, static_cast<unsigned>(std::min(rest, sizeof buffer)));
        if (count > 0 && !WriteAll(memory, {buffer, static_cast<size_t>(count)})) Fail(path, std::strerror(errno));
        if (count <= 0) break;
        rest -= static_cast<size_t>(count);
    }
    int error = Z_OK;
    gzerror(stream, &error);
    if (error == Z_ERRNO) Fail(path, std::strerror(errno));
    if (error != Z_OK && error != Z_STREAM_END) Fail(path, "it is damaged or cut off; take another copy of it");
}

int ReadIntoMemory(const std::string& path) {
    const TGzipFile stream = Open(path);
    const int memory = memfd_create("kyr-collection", MFD_CLOEXEC);
    if (memory < 0) Fail(path, std::strerror(errno));
    Copy(path, stream.get(), memory);
    return memory;
}

}  // namespace

bool TStreamedFile::IsStandardInput(const std::string& path) { return path == "-" || path == kStandardInput; }

bool TStreamedFile::IsStream(const std::string& path) {
    return IsStandardInput(path) || StartsWith(path, "/dev/fd/") || StartsWith(path, "/proc/self/fd/");
}

TStreamedFile::TStreamedFile(const std::string& path) : fMemory(ReadIntoMemory(path)) {}

std::string TStreamedFile::NameOf(const std::string& path) {
    return IsStandardInput(path) ? "standard input" : "'" + path + "'";
}
