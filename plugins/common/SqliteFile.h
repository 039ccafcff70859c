#ifndef KYR_PLUGINS_COMMON_SQLITEFILE_H
#define KYR_PLUGINS_COMMON_SQLITEFILE_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "SystemRoot.h"

struct sqlite3_stmt;

/// A row of a query, good until the next one. Columns are counted from 0.
class TSqliteRow {
public:
    explicit TSqliteRow(sqlite3_stmt* statement) : fStatement(statement) {}

    bool IsNull(int column) const;
    int64_t Integer(int column) const;         ///< 0 for NULL
    std::string_view Bytes(int column) const;  ///< a text or a blob; empty for NULL

private:
    sqlite3_stmt* fStatement;
};

using TSqliteTake = std::function<void(const TSqliteRow& row)>;

/// Runs the query on a data base of the inventoried machine and gives its rows. The file and its write-ahead log are
/// read into memory and nothing else is done with them: no lock is taken and nothing is written beside them. Tells
/// whether all rows were given. Virtual tables and views are not read.
TListing QuerySqlite(const TSystemRoot& root, const std::string& path, const char* query, const TSqliteTake& take);

/// The same of the bytes of a data base and of its write-ahead log, which is empty if there is none. Gives nothing, or
/// why rows are missing.
std::optional<EAbsence> QuerySqliteImage(std::string image, std::string_view log, const char* query,
                                         const TSqliteTake& take);

#endif
