#include "Logins.h"

#include <fcntl.h>
#include <lastlog.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utmp.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "SqliteFile.h"

namespace {

constexpr const char* kLastLog = "/var/log/lastlog";
constexpr const char* kWtmp = "/var/log/wtmp";
constexpr size_t kMostWtmp = 16 << 20;

constexpr size_t kLine = 32;
constexpr size_t kHost = 256;

// Where times have 32 bits, and where they have 64. In between, a record is as on this machine.
constexpr size_t kLastLogSizes[] = {292, 296};
constexpr size_t kWtmpSizes[] = {384, 400};

size_t RecordSize(uint64_t fileSize, const size_t (&sizes)[2], size_t own) {
    const size_t other = own == sizes[0] ? sizes[1] : sizes[0];
    return fileSize % own != 0 && fileSize % other == 0 ? other : own;
}

template <typename T>
T Number(std::string_view record, size_t offset) {
    T number;
    std::memcpy(&number, record.data() + offset, sizeof number);
    return number;
}

std::string TextAt(std::string_view record, size_t offset, size_t length) {
    const std::string_view text = record.substr(offset, length);
    return std::string(text.substr(0, text.find('\0')));
}

/// A file of records of one size. It may be sparse and have the size of many disks, so that only what is wanted is
/// read.
class TRecords {
public:
    TRecords(const TSystemRoot& root, const char* path)
        : fPath(path), fFile(open(root.Locate(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        fError = fFile.Number() < 0 ? errno : 0;
        struct stat status;
        if (fError == 0 && fstat(fFile.Number(), &status) != 0) fError = errno;
        if (fError == 0 && !S_ISREG(status.st_mode)) fError = ENOTSUP;
        fSize = fError == 0 ? static_cast<uint64_t>(status.st_size) : 0;
    }

    uint64_t Size() const { return fSize; }
    TListing Listing() const {
        return fError == 0 ? TListing::Of(true, fPath) : TListing::Missing(AbsenceOf(fError), fPath);
    }
    /// Fewer bytes than asked for at the end of the file.
    std::string Read(uint64_t offset, size_t length) {
        std::string bytes(offset < fSize ? static_cast<size_t>(std::min<uint64_t>(length, fSize - offset)) : 0, '\0');
        size_t got = 0;
        while (got < bytes.size()) {
            const ssize_t count =
                pread(fFile.Number(), bytes.data() + got, bytes.size() - got, static_cast<off_t>(offset + got));
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) fError = errno;
            if (count <= 0) break;
            got += static_cast<size_t>(count);
        }
        bytes.resize(got);
        return bytes;
    }

private:
    const char* fPath;
    TDescriptor fFile;
    int fError = 0;
    uint64_t fSize = 0;
};

using TLogins = std::unordered_map<std::string, TLogin>;

void Keep(TAccount& account, const TLogin& login) {
    if (!account.login || account.login->time < login.time) account.login = login;
}

void Keep(std::vector<TAccount>& accounts, const TLogins& logins) {
    if (logins.empty()) return;
    for (TAccount& account : accounts)
        if (const auto found = logins.find(account.name); found != logins.end()) Keep(account, found->second);
}

// There is a record for each number of a user, in the order of these numbers.
// Some are read at once, since the numbers of most users follow each other.
TListing ReadLastLog(const TSystemRoot& root, std::vector<TAccount>& accounts) {
    constexpr uint64_t kAtOnce = 32;
    TRecords records(root, kLastLog);
    const size_t size = RecordSize(records.Size(), kLastLogSizes, sizeof(struct lastlog));
    uint64_t first = 0;
    std::string read;
    for (TAccount& account : accounts) {
        const uint64_t place = account.userId;
        if (place >= records.Size() / size) continue;
        if (place < first || place >= first + read.size() / size) {
            first = place / kAtOnce * kAtOnce;
            read = records.Read(first * size, kAtOnce * size);
        }
        const size_t offset = static_cast<size_t>(place - first) * size;
        if (offset + size > read.size()) continue;
        if (const auto login = ParseLastLog(std::string_view(read).substr(offset, size))) Keep(account, *login);
    }
    return records.Listing();
}

// Of a large file only the end, which has the newest records.
TListing ReadWtmp(const TSystemRoot& root, std::vector<TAccount>& accounts) {
    TRecords records(root, kWtmp);
    const size_t size = RecordSize(records.Size(), kWtmpSizes, sizeof(struct utmp));
    const uint64_t most = kMostWtmp / size * size, whole = records.Size() / size * size;
    Keep(accounts, ParseWtmp(records.Read(whole > most ? whole - most : 0, kMostWtmp), size));
    return records.Listing();
}

/// A data base that newer systems have instead, because the times of the older files end in 2038. The query gives
/// name, seconds, terminal and host.
struct TLoginDataBase {
    const char* path;
    const char* query;
};

constexpr TLoginDataBase kDataBases[] = {
    {"/var/lib/lastlog/lastlog2.db", "SELECT Name, Time, TTY, RemoteHost FROM Lastlog2 WHERE Time > 0"},
    {"/var/lib/wtmpdb/wtmp.db",
     "SELECT User, max(Login) / 1000000, TTY, RemoteHost FROM wtmp WHERE Type = 3 AND Login > 0 GROUP BY User"},
};

TListing ReadDataBase(const TSystemRoot& root, const TLoginDataBase& base, std::vector<TAccount>& accounts) {
    if (!root.Exists(base.path) && errno == ENOENT) return TListing::Missing(EAbsence::eNotPresent, base.path);
    TLogins logins;
    const TListing listing = QuerySqlite(root, base.path, base.query, [&](const TSqliteRow& row) {
        logins.emplace(row.Bytes(0),
                       TLogin{row.Integer(1), std::string(row.Bytes(2)), std::string(row.Bytes(3)), base.path});
    });
    Keep(accounts, logins);
    return listing;
}

}  // namespace

// One that cannot be read may have a later time than the others.
TListing ReadLogins(const TSystemRoot& root, std::vector<TAccount>& accounts) {
    std::vector<TListing> listings = {ReadLastLog(root, accounts), ReadWtmp(root, accounts)};
    for (const TLoginDataBase& base : kDataBases) listings.push_back(ReadDataBase(root, base, accounts));
    for (const TListing& listing : listings)
        if (!listing && listing.absence != EAbsence::eNotPresent) return listing;
    const auto found =
        std::find_if(listings.begin(), listings.end(), [](const TListing& listing) { return bool(listing); });
    return found == listings.end() ? listings.front() : *found;
}

std::optional<TLogin> ParseLastLog(std::string_view record) {
    const size_t time = record.size() == kLastLogSizes[1] ? sizeof(int64_t) : sizeof(int32_t);
    if (record.size() < time + kLine + kHost) return std::nullopt;
    const int64_t seconds = time == sizeof(int64_t) ? Number<int64_t>(record, 0) : Number<int32_t>(record, 0);
    if (seconds <= 0) return std::nullopt;
    return TLogin{seconds, TextAt(record, time, kLine), TextAt(record, time + kLine, kHost), kLastLog};
}

std::unordered_map<std::string, TLogin> ParseWtmp(std::string_view records, size_t recordSize) {
    constexpr size_t kTerminalPlace = 8, kUserPlace = 44, kHostPlace = 76, kTimePlace = 340, kLongTimePlace = 344;
    std::unordered_map<std::string, TLogin> logins;
    for (; records.size() >= recordSize; records.remove_prefix(recordSize)) {
        if (Number<int16_t>(records, 0) != USER_PROCESS) continue;
        const int64_t seconds = recordSize == kWtmpSizes[1] ? Number<int64_t>(records, kLongTimePlace)
                                                            : Number<int32_t>(records, kTimePlace);
        if (seconds <= 0) continue;
        TLogin& login = logins[TextAt(records, kUserPlace, kLine)];
        if (seconds < login.time) continue;
        login = {seconds, TextAt(records, kTerminalPlace, kLine), TextAt(records, kHostPlace, kHost), kWtmp};
    }
    return logins;
}
