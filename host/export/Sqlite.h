#ifndef KYR_HOST_EXPORT_SQLITE_H
#define KYR_HOST_EXPORT_SQLITE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

class TSqliteFile;

/// A prepared statement. Parameters and columns are counted as SQLite does: from 1 and from 0. A text or blob that is
/// bound must stay until the statement has run.
class TSqliteStatement {
public:
    TSqliteStatement(const TSqliteFile& file, const std::string& sql);

    void BindNull(int parameter);
    void Bind(int parameter, int64_t integer);
    void Bind(int parameter, double real);
    void Bind(int parameter, std::string_view text);
    /// NULL for an empty text.
    void BindIfAny(int parameter, std::string_view text);
    void BindBlob(int parameter, std::string_view bytes);

    /// Whether there is a row, which stays until the next call. Without one the statement is ready to run again.
    bool Step();
    /// Runs a statement of which the rows do not matter, or no more of them.
    void Run();
    void Reset();
    int64_t Integer(int column) const;
    std::string Text(int column) const;  ///< or blob; empty for NULL

private:
    const TSqliteFile& fFile;
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> fStatement;
};

/// A data base of SQLite. Whatever fails raises TCommandError with eExitOutput.
class TSqliteFile {
public:
    explicit TSqliteFile(const std::string& path);

    void Execute(const std::string& sql) const;
    int64_t IntegerOf(const std::string& query) const;
    int64_t LastRow() const;
    /// How many columns a table can have.
    size_t MostColumns() const;
    sqlite3* Handle() const { return fHandle.get(); }
    [[noreturn]] void Fail() const;
    [[noreturn]] void Refuse(const std::string& why) const;

private:
    const std::string fPath;
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> fHandle;
};

/// A name as it stands in SQL: in quotes.
std::string QuotedName(const std::string& name);

#endif
