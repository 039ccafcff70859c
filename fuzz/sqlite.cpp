// A data base of SQLite with its write-ahead log, as a plugin reads one: the number of pages, the pages and the log.
#include <cstdint>

#include "SqliteFile.h"
#include "support/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr size_t kPage = 512, kMostRows = 100'000, kMostBytes = 64 << 20;
    TByteReader input(data, size);
    const std::string image = input.Bytes(input.Byte() * kPage), log = input.Bytes(size);
    size_t rows = 0;
    const auto absence = QuerySqliteImage(image, log, "SELECT a, b FROM t LIMIT 100000", [&](const TSqliteRow& row) {
        ++rows;
        Require(row.Bytes(0).size() <= kMostBytes && row.Bytes(1).size() <= kMostBytes, "values have a limit");
        Require(!row.IsNull(1) || row.Integer(1) == 0, "NULL is no number");
    });
    Require(rows <= kMostRows, "rows end");
    if (image.empty() && log.empty()) Require(absence.has_value(), "nothing is no data base");
    return 0;
}
