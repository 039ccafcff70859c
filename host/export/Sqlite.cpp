#include "export/Sqlite.h"

#include <sqlite3.h>

#include <cstring>

#include "base/ExitStatus.h"
#include "base/Text.h"

namespace {

constexpr int kBusyMilliseconds = 10000;

}  // namespace

TSqliteStatement::TSqliteStatement(const TSqliteFile& file, const std::string& sql)
    : fFile(file), fStatement(nullptr, sqlite3_finalize) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(file.Handle(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK)
        file.Fail();
    fStatement.reset(statement);
}

void TSqliteStatement::BindNull(int parameter) { sqlite3_bind_null(fStatement.get(), parameter); }
void TSqliteStatement::Bind(int parameter, int64_t integer) {
    sqlite3_bind_int64(fStatement.get(), parameter, integer);
}
void TSqliteStatement::Bind(int parameter, double real) { sqlite3_bind_double(fStatement.get(), parameter, real); }
void TSqliteStatement::Bind(int parameter, std::string_view text) {
    if (sqlite3_bind_text64(fStatement.get(), parameter, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8) !=
        SQLITE_OK)
        fFile.Fail();
}
void TSqliteStatement::BindIfAny(int parameter, std::string_view text) {
    text.empty() ? BindNull(parameter) : Bind(parameter, text);
}
void TSqliteStatement::BindBlob(int parameter, std::string_view bytes) {
    if (sqlite3_bind_blob64(fStatement.get(), parameter, bytes.data(), bytes.size(), SQLITE_STATIC) != SQLITE_OK)
        fFile.Fail();
}

bool TSqliteStatement::Step() {
    const int result = sqlite3_step(fStatement.get());
    if (result == SQLITE_ROW) return true;
    if (result != SQLITE_DONE) fFile.Fail();
    Reset();
    return false;
}

void TSqliteStatement::Run() {
    if (Step()) Reset();
}

void TSqliteStatement::Reset() { sqlite3_reset(fStatement.get()); }

int64_t TSqliteStatement::Integer(int column) const { return sqlite3_column_int64(fStatement.get(), column); }

std::string TSqliteStatement::Text(int column) const {
    const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(fStatement.get(), column));
    const auto size = static_cast<size_t>(sqlite3_column_bytes(fStatement.get(), column));
    return bytes == nullptr ? "" : std::string(bytes, size);
}

TSqliteFile::TSqliteFile(const std::string& path) : fPath(path), fHandle(nullptr, sqlite3_close) {
    sqlite3* handle = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(path.c_str(), &handle, flags, nullptr);
    fHandle.reset(handle);
    if (result != SQLITE_OK) Fail();
    sqlite3_busy_timeout(handle, kBusyMilliseconds);
}

void TSqliteFile::Execute(const std::string& sql) const {
    if (sqlite3_exec(Handle(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
}

int64_t TSqliteFile::IntegerOf(const std::string& query) const {
    TSqliteStatement statement(*this, query);
    return statement.Step() ? statement.Integer(0) : 0;
}

int64_t TSqliteFile::LastRow() const { return sqlite3_last_insert_rowid(Handle()); }

size_t TSqliteFile::MostColumns() const {
    return static_cast<size_t>(sqlite3_limit(Handle(), SQLITE_LIMIT_COLUMN, -1));
}

void TSqliteFile::Fail() const {
    const int code = sqlite3_errcode(Handle()) & 0xFF;
    if (code == SQLITE_NOTADB) Refuse("it is no data base of SQLite; name another file");
    if (code == SQLITE_BUSY) Refuse("another program is using it; try again when that has ended");
    const int reason = code == SQLITE_CANTOPEN ? sqlite3_system_errno(Handle()) : 0;
    Refuse(reason != 0 ? std::strerror(reason) : sqlite3_errmsg(Handle()));
}

void TSqliteFile::Refuse(const std::string& why) const {
    throw TCommandError(eExitOutput, "cannot write the data base '" + VisibleText(fPath) + "': " + why);
}

std::string QuotedName(const std::string& name) {
    std::string quoted = "\"";
    for (const char c : name) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}
