#include "SqliteFile.h"

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <new>

namespace {

constexpr size_t kMostBytes = size_t{512} << 20;
constexpr int kMostValueBytes = 64 << 20;

constexpr std::string_view kJournalMagic = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
constexpr size_t kFileHeader = 100;
/// The versions of the format in which the file was written and can be read: 2 with a write-ahead log, 1 without one.
constexpr size_t kWriteVersion = 18, kReadVersion = 19;
constexpr size_t kChangeCounterEnd = 28;

constexpr uint32_t kLogMagic = 0x377f0682;  // the lowest bit tells that its checksums are made of big-endian numbers
constexpr size_t kLogHeader = 32, kFrameHeader = 24;

/// How many steps of SQLite's machine a query may take, and after how many of them it is asked. Time has a limit too,
/// since one step can make a value of the largest size.
constexpr int kStepsBetween = 100, kMostCalls = 500'000;
constexpr auto kMostTime = std::chrono::seconds(10);

/// What is left of both.
struct TBudget {
    std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + kMostTime;
    int calls = kMostCalls;
};

int IsSpent(void* data) {
    TBudget& budget = *static_cast<TBudget*>(data);
    return --budget.calls < 0 || std::chrono::steady_clock::now() > budget.end ? 1 : 0;
}

uint32_t BigEndian(std::string_view bytes, size_t at) {
    uint32_t number = 0;
    for (size_t i = 0; i < 4; ++i) number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

uint32_t LittleEndian(std::string_view bytes, size_t at) {
    uint32_t number = 0;
    for (size_t i = 4; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

/// The running checksum of a write-ahead log.
class TLogChecksum {
public:
    explicit TLogChecksum(bool bigEndian) : fBigEndian(bigEndian) {}

    void Add(std::string_view bytes) {
        for (size_t at = 0; at + 8 <= bytes.size(); at += 8) {
            fFirst += Word(bytes, at) + fSecond;
            fSecond += Word(bytes, at + 4) + fFirst;
        }
    }
    bool IsAt(std::string_view bytes, size_t at) const {
        return BigEndian(bytes, at) == fFirst && BigEndian(bytes, at + 4) == fSecond;
    }

private:
    uint32_t Word(std::string_view bytes, size_t at) const {
        return fBigEndian ? BigEndian(bytes, at) : LittleEndian(bytes, at);
    }

    const bool fBigEndian;
    uint32_t fFirst = 0, fSecond = 0;
};

/// What the committed transactions of a write-ahead log made of the data base.
struct TCommitted {
    size_t pageSize = 0;
    size_t end = 0;    ///< of the last frame that counts; 0 if none does
    size_t pages = 0;  ///< of the whole data base
};

bool IsPageSize(size_t size) { return size >= 512 && size <= 65536 && (size & (size - 1)) == 0; }

// A log is written over from its start without being cut off: what follows the last frame with the salt of the header
// and the right checksum is left over from before.
TCommitted FindCommitted(std::string_view log) {
    TCommitted committed;
    if (log.size() < kLogHeader || (BigEndian(log, 0) & ~1U) != kLogMagic) return committed;
    committed.pageSize = BigEndian(log, 8);
    TLogChecksum checksum(BigEndian(log, 0) & 1);
    checksum.Add(log.substr(0, 24));
    if (!IsPageSize(committed.pageSize) || !checksum.IsAt(log, 24)) return committed;
    const std::string_view salt = log.substr(16, 8);
    for (size_t at = kLogHeader; log.size() - at >= kFrameHeader + committed.pageSize;) {
        if (log.substr(at + 8, 8) != salt || BigEndian(log, at) == 0) break;
        checksum.Add(log.substr(at, 8));
        checksum.Add(log.substr(at + kFrameHeader, committed.pageSize));
        if (!checksum.IsAt(log, at + 16)) break;
        const uint32_t pages = BigEndian(log, at + 4);
        at += kFrameHeader + committed.pageSize;
        if (pages == 0) continue;
        committed.end = at;
        committed.pages = pages;
    }
    return committed;
}

// Puts the pages of the log into the image, as a checkpoint would do. False if that would be too large.
bool ApplyLog(std::string_view log, std::string& image) {
    const TCommitted committed = FindCommitted(log);
    if (committed.end == 0) return true;
    if (committed.pages > kMostBytes / committed.pageSize) return false;
    image.resize(committed.pages * committed.pageSize);
    for (size_t at = kLogHeader; at < committed.end; at += kFrameHeader + committed.pageSize) {
        const size_t page = BigEndian(log, at) - 1;
        if (page < committed.pages)
            image.replace(page * committed.pageSize, committed.pageSize, log, at + kFrameHeader, committed.pageSize);
    }
    return true;
}

using TDataBase = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;
using TStatement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

// The schema of a file is not to be trusted: nothing that it declares may run.
void Restrict(sqlite3* base) {
    for (const int option : {SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_ENABLE_TRIGGER,
                             SQLITE_DBCONFIG_ENABLE_VIEW, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION})
        sqlite3_db_config(base, option, 0, nullptr);
    sqlite3_db_config(base, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_exec(base, "PRAGMA cell_size_check = ON", nullptr, nullptr, nullptr);
    for (const auto& [limit, value] :
         {std::pair(SQLITE_LIMIT_LENGTH, kMostValueBytes), std::pair(SQLITE_LIMIT_SQL_LENGTH, 1 << 20),
          std::pair(SQLITE_LIMIT_COLUMN, 200), std::pair(SQLITE_LIMIT_EXPR_DEPTH, 50),
          std::pair(SQLITE_LIMIT_ATTACHED, 0), std::pair(SQLITE_LIMIT_WORKER_THREADS, 0)})
        sqlite3_limit(base, limit, value);
}

TDataBase OpenImage(std::string& image) {
    sqlite3* handle = nullptr;
    const int opened = sqlite3_open_v2(":memory:", &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    TDataBase base(handle, sqlite3_close);
    if (opened != SQLITE_OK) return {nullptr, sqlite3_close};
    Restrict(handle);
    const auto size = static_cast<sqlite3_int64>(image.size());
    auto* const bytes = reinterpret_cast<unsigned char*>(image.data());
    if (sqlite3_deserialize(handle, "main", bytes, size, size, SQLITE_DESERIALIZE_READONLY) != SQLITE_OK) base.reset();
    return base;
}

int Run(sqlite3* base, const char* query, const TSqliteTake& take) {
    sqlite3_stmt* handle = nullptr;
    const int prepared = sqlite3_prepare_v2(base, query, -1, &handle, nullptr);
    const TStatement statement(handle, sqlite3_finalize);
    if (prepared != SQLITE_OK) return prepared;
    int result = sqlite3_step(handle);
    for (; result == SQLITE_ROW; result = sqlite3_step(handle)) take(TSqliteRow(handle));
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

// The code behind a virtual table reads whatever the file has in its shadow tables. None of ours has one.
int RunTrusted(sqlite3* base, const char* query, const TSqliteTake& take) {
    bool hasVirtual = false;
    const int result = Run(base, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND coalesce(rootpage, 0) = 0",
                           [&](const TSqliteRow&) { hasVirtual = true; });
    if (result != SQLITE_OK) return result;
    return hasVirtual ? SQLITE_ERROR : Run(base, query, take);
}

std::optional<EAbsence> AbsenceOfResult(int result) {
    if (result == SQLITE_OK) return std::nullopt;
    const bool isOther = result == SQLITE_ERROR || result == SQLITE_NOTADB;
    return isOther ? EAbsence::eNotSupported : EAbsence::eReadError;
}

std::optional<EAbsence> QueryApplied(std::string& image, const char* query, const TSqliteTake& take) {
    if (image.size() < kFileHeader) return EAbsence::eNotSupported;
    image[kWriteVersion] = image[kReadVersion] = '\1';
    const TDataBase base = OpenImage(image);
    if (!base) return EAbsence::eReadError;
    TBudget budget;
    sqlite3_progress_handler(base.get(), kStepsBetween, IsSpent, &budget);
    return AbsenceOfResult(RunTrusted(base.get(), query, take));
}

/// The files of a data base as they were at one moment.
struct TFiles {
    TFact<std::string> image;
    TFact<std::string> log;
};

// The whole file; one that is too large is not supported.
TFact<std::string> ReadWhole(const TSystemRoot& root, const std::string& path) {
    TFact<std::string> file = root.ReadFile(path, kMostBytes + 1);
    if (file && file->size() > kMostBytes) return TFact<std::string>::Missing(EAbsence::eNotSupported, path);
    return file;
}

// What has to stay the same while both files are read: the count of changes and the header of the log. Frames that are
// appended to the same log hold all that a checkpoint could have put into the data base meanwhile.
std::string MarkOf(const std::string& image, const std::string& log) {
    return image.substr(0, kChangeCounterEnd) + '|' + log.substr(0, kLogHeader);
}

std::string ReadMark(const TSystemRoot& root, const std::string& path) {
    return MarkOf(root.ReadFile(path, kFileHeader).ValueOr(""), root.ReadFile(path + "-wal", kLogHeader).ValueOr(""));
}

// A journal with a header belongs to a transaction that is under way, or that a crash has left.
bool HasOpenTransaction(const TSystemRoot& root, const std::string& path) {
    return root.ReadFile(path + "-journal", kJournalMagic.size()).ValueOr("") == kJournalMagic;
}

TFiles ReadFiles(const TSystemRoot& root, const std::string& path) {
    constexpr int kAttempts = 3;
    for (int i = 0; i < kAttempts; ++i) {
        const std::string before = ReadMark(root, path);
        TFiles files = {ReadWhole(root, path), {}};
        if (!files.image) return files;
        files.log = ReadWhole(root, path + "-wal");
        if (ReadMark(root, path) == before && !HasOpenTransaction(root, path)) return files;
    }
    return {TFact<std::string>::Missing(EAbsence::eReadError, path), {}};
}

TListing QueryFiles(TFiles files, const char* query, const TSqliteTake& take) {
    if (!files.image) return ListingOf(files.image);
    if (!files.log && files.log.absence != EAbsence::eNotPresent) return ListingOf(files.log);
    const std::string log = files.log.ValueOr("");
    const auto absence = QuerySqliteImage(std::move(*files.image.value), log, query, take);
    return absence ? TListing::Missing(*absence, files.image.source) : TListing::Of(true, files.image.source);
}

}  // namespace

bool TSqliteRow::IsNull(int column) const { return sqlite3_column_type(fStatement, column) == SQLITE_NULL; }
int64_t TSqliteRow::Integer(int column) const { return sqlite3_column_int64(fStatement, column); }

std::string_view TSqliteRow::Bytes(int column) const {
    const void* const bytes = sqlite3_column_type(fStatement, column) == SQLITE_BLOB
                                  ? sqlite3_column_blob(fStatement, column)
                                  : sqlite3_column_text(fStatement, column);
    if (bytes == nullptr) return {};
    return {static_cast<const char*>(bytes), static_cast<size_t>(sqlite3_column_bytes(fStatement, column))};
}

TListing QuerySqlite(const TSystemRoot& root, const std::string& path, const char* query, const TSqliteTake& take) {
    try {
        return QueryFiles(ReadFiles(root, path), query, take);
    } catch (const std::bad_alloc&) {
        return TListing::Missing(EAbsence::eReadError, path);
    }
}

std::optional<EAbsence> QuerySqliteImage(std::string image, std::string_view log, const char* query,
                                         const TSqliteTake& take) {
    return ApplyLog(log, image) ? QueryApplied(image, query, take) : std::optional(EAbsence::eNotSupported);
}
