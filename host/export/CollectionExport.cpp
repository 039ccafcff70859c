#include "export/CollectionExport.h"

#include <malloc.h>
#include <sys/stat.h>
#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>

#include "base/ExitStatus.h"
#include "base/Gzip.h"
#include "base/Spool.h"
#include "base/Text.h"
#include "export/Changes.h"
#include "export/Rows.h"
#include "kyr/TContainer.h"
#include "saved/SavedCollection.h"

namespace {

constexpr size_t kGzipEnd = 8;  // a check sum and the size of what is compressed

std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Of the uncompressed document, whether it is compressed or not: its check sum and size.
uint64_t FingerprintOf(const std::string& bytes) {
    uint32_t parts[2] = {0, static_cast<uint32_t>(bytes.size())};
    if (IsGzip(bytes) && bytes.size() >= kGzipEnd)
        std::memcpy(parts, bytes.data() + bytes.size() - kGzipEnd, sizeof parts);
    else
        parts[0] =
            static_cast<uint32_t>(crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
    return uint64_t{parts[0]} << 32 | parts[1];
}

std::string Compressed(const std::string& bytes) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    std::string compressed(deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
    stream.avail_out = static_cast<uInt>(compressed.size());
    deflate(&stream, Z_FINISH);
    compressed.resize(stream.total_out);
    deflateEnd(&stream);
    return compressed;
}

// A collection that was saved without its time is as old as its file.
void SetTimeOfFile(const std::string& path, TRun& run) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return;
    tm fields{};
    gmtime_r(&status.st_mtim.tv_sec, &fields);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S+00:00", &fields);
    run.collectedAt = text;
    run.collectedMicroseconds = int64_t{status.st_mtim.tv_sec} * 1000000;
}

TRun RunOf(const TSource& source, const TContainer& container, const std::string& bytes) {
    TRun run = RunOf(container);
    run.file = ValidText(source.name);
    run.fingerprint = FingerprintOf(bytes);
    if (run.collectedAt.empty()) SetTimeOfFile(source.path, run);
    if (run.name.empty() && run.machineId.empty() && run.uuid.empty() && run.serial.empty())
        throw TCommandError(eExitNothing, "cannot take the collection '" + VisibleText(source.name) +
                                              "': it does not tell of which host it is; collect it with the class "
                                              "MOLTA_ComputerSystem");
    return run;
}

void ReadNeighbour(const TVerdict::TNeighbour& neighbour, TContainer& container) {
    if (neighbour.document.empty()) return (void)ReadCollectionWithStates(neighbour.file, container);
    TSpool document;
    document.Write(neighbour.document);
    document.Rewind();
    ReadCollectionWithStates(document.Path(), container);
}

void WriteChanges(const TContainer& container, const TRun& run, const TVerdict::TNeighbour& neighbour,
                  const std::vector<std::string>& classes, IRunSink& sink) {
    const std::string& other = neighbour.collectedAt;
    const std::string& earlier = neighbour.isOlder ? other : run.collectedAt;
    const std::string& later = neighbour.isOlder ? run.collectedAt : other;
    TContainer stored;
    malloc_trim(0);  // the greatest need is while the second collection is read
    try {
        ReadNeighbour(neighbour, stored);
    } catch (const TCommandError& e) {
        return WriteNotCompared(earlier, later, e.what(), sink);
    }
    const TContainer& before = neighbour.isOlder ? stored : container;
    const TContainer& after = neighbour.isOlder ? container : stored;
    WriteChanges({before, earlier}, {after, later}, classes, sink);
}

}  // namespace

void ExportCollection(const TSource& source, const std::vector<std::string>& classes, TClassTables& tables,
                      IRunSink& sink) {
    TContainer container;
    ReadCollectionWithStates(source.path, container);
    std::string bytes = ReadBytes(source.path);
    TRun run = RunOf(source, container, bytes);
    run.knownClasses = KnownClasses(container, classes);
    const TVerdict verdict = sink.Decide(run);
    if (verdict.what != TVerdict::eStore) return sink.End();
    sink.Begin(run);
    WriteRows(container, {classes, sink.WantsPaths()}, tables, sink);
    for (const TVerdict::TNeighbour& neighbour : verdict.neighbours)
        WriteChanges(container, run, neighbour, classes, sink);
    if (sink.WantsDocuments()) sink.Document(IsGzip(bytes) ? std::move(bytes) : Compressed(bytes));
    sink.End();
}
