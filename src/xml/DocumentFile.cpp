#include "xml/DocumentFile.h"

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <new>

#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"

namespace {

struct TCloser {
    void operator()(FILE* file) const { fclose(file); }
    void operator()(gzFile_s* file) const { gzclose(file); }
};

void Require(bool good, kyrStatusCode code) {
    if (!good) throw TKYRException(code);
}

std::uint32_t ReadLittleEndian(std::ifstream& stream, int size) {
    unsigned char bytes[4] = {};
    Require(static_cast<bool>(stream.read(reinterpret_cast<char*>(bytes), size)), kyrStatusFileSystemError);
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

/// The size in the gzip trailer: that of the last member, modulo 2^32.
std::uint32_t ReadInflatedSize(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    Require(stream.is_open(), kyrStatusFileSystemError);
    Require(ReadLittleEndian(stream, 2) == 0x8B1F, kyrStatusInvalidGzipFile);
    stream.seekg(-4, std::ios::end);
    return ReadLittleEndian(stream, 4);
}

}  // namespace

TDocumentFile::TDocumentFile(const std::string& path) {
    const long long size = TOSSpecific::GetFileSize(path);
    if (path.rfind(".gz") == std::string::npos)
        ReadPlain(path, static_cast<unsigned long long>(size));
    else
        ReadCompressed(path);
}

void TDocumentFile::ReadPlain(const std::string& path, unsigned long long size) {
    Allocate(size);
    const std::unique_ptr<FILE, TCloser> file(fopen(path.c_str(), "r"));
    Require(file != nullptr, kyrStatusFileSystemError);
    const std::size_t length = fread(GetText(), 1, size, file.get());
    Require(ferror(file.get()) == 0, kyrStatusFileSystemError);
    Terminate(length);  // shorter than size if the file has shrunk meanwhile
}

void TDocumentFile::ReadCompressed(const std::string& path) {
    const std::uint32_t size = ReadInflatedSize(path);
    Allocate(size);
    const std::unique_ptr<gzFile_s, TCloser> file(gzopen(path.c_str(), "rb"));
    Require(file != nullptr, kyrStatusFileSystemError);
    Require(gzread(file.get(), GetText(), size) == static_cast<int>(size), kyrStatusCorruptGzipFile);
    Terminate(size);
}

void TDocumentFile::Allocate(unsigned long long size) {
    Require(size <= kMaxSize, kyrStatusInvalidSpecificationDocument);
    fBuffer.reset(new (std::nothrow) char[size + 2]);
    Require(fBuffer != nullptr, kyrStatusOutOfMemory);
    fBuffer[0] = '\0';
}
