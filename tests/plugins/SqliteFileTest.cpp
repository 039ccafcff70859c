#include "SqliteFile.h"

#include <sqlite3.h>

#include <filesystem>
#include <memory>

#include "support/TestSupport.h"

namespace {

/// A data base that stays open, so that its log stays beside it.
class TLiveBase {
public:
    explicit TLiveBase(const std::string& path) : fHandle(nullptr, sqlite3_close) {
        sqlite3* handle = nullptr;
        sqlite3_open(path.c_str(), &handle);
        fHandle.reset(handle);
        Run("PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0; CREATE TABLE T (id INTEGER PRIMARY KEY, text)");
    }
    void Run(const char* sql) { ASSERT_EQ(sqlite3_exec(fHandle.get(), sql, nullptr, nullptr, nullptr), SQLITE_OK); }

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> fHandle;
};

/// The rows, and why some are missing.
std::string Outcome(const TempFolder& folder, const char* query = "SELECT id, text FROM T ORDER BY id") {
    std::string told;
    const TListing listing = QuerySqlite(TSystemRoot(folder.Path()), "/base.db", query, [&](const TSqliteRow& row) {
        told += std::to_string(row.Integer(0)) + (row.IsNull(1) ? "" : '=' + std::string(row.Bytes(1))) + ' ';
    });
    return listing ? told : told + AbsenceText(listing.absence);
}

size_t FilesIn(const TempFolder& folder) {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(folder.Path()), {}));
}

}  // namespace

TEST(SqliteFileTest, CommittedTransactionsOfTheLogCount) {
    const TempFolder folder;
    const std::string path = folder.Path() + "/base.db";
    TLiveBase base(path);
    EXPECT_EQ(Outcome(folder), "");
    base.Run("INSERT INTO T VALUES (1, 'one'), (2, NULL)");
    EXPECT_EQ(Outcome(folder), "1=one 2 ");
    base.Run("PRAGMA wal_checkpoint(RESTART); UPDATE T SET text = x'4142' WHERE id = 2");
    EXPECT_EQ(Outcome(folder), "1=one 2=AB ");
    base.Run("BEGIN; UPDATE T SET text = 'two'");
    EXPECT_EQ(Outcome(folder), "1=one 2=AB ");
    base.Run("COMMIT");
    EXPECT_EQ(Outcome(folder), "1=two 2=two ");
    const std::string log = ReadFile(path + "-wal");
    for (const size_t inFrame : {0, 8, 16, 24, 4119}) {  // of the second one, which is the last that counts
        std::string damaged = log;
        damaged[32 + 4120 + inFrame] ^= 1;
        folder.Write("base.db-wal", damaged);
        EXPECT_EQ(Outcome(folder), "1=one 2=AB ") << inFrame;
    }
    EXPECT_EQ(FilesIn(folder), 3u);
}

TEST(SqliteFileTest, GrowingDataBaseIsReadWhole) {
    const TempFolder folder;
    TLiveBase base(folder.Path() + "/base.db");
    base.Run(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) "
        "INSERT INTO T SELECT i, printf('%.200c', 'x') FROM n");
    EXPECT_EQ(Outcome(folder, "SELECT count(*), NULL FROM T"), "2000 ");
    base.Run("DELETE FROM T WHERE id > 10; VACUUM");
    EXPECT_EQ(Outcome(folder, "SELECT sum(id), NULL FROM T"), "55 ");
}

TEST(SqliteFileTest, WhatIsNoTableOfAGoodFileIsRefused) {
    const TempFolder folder;
    const std::string path = folder.Path() + "/base.db";
    EXPECT_EQ(Outcome(folder), "not present");
    for (const char* content : {"", "SQLite format 3", "no data base at all"}) {
        folder.Write("base.db", content + std::string(*content == 'n' ? 4096 : 0, ' '));
        EXPECT_EQ(Outcome(folder), "not supported") << content;
    }
    std::filesystem::remove(path);
    TLiveBase base(path);
    base.Run("INSERT INTO T VALUES (1, 'one')");
    EXPECT_EQ(Outcome(folder, "SELECT 1, 1 FROM Other"), "not supported");
    EXPECT_EQ(Outcome(folder, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i FROM n) SELECT max(i), 0 FROM n"),
              "read error");
    folder.Write("base.db-journal", "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7 and more");
    EXPECT_EQ(Outcome(folder), "read error");
    std::filesystem::remove(path + "-journal");
    base.Run("CREATE VIEW V AS SELECT id, text FROM T");
    EXPECT_EQ(Outcome(folder, "SELECT id, text FROM V"), "not supported");
    base.Run("CREATE VIRTUAL TABLE F USING fts5(text)");
    EXPECT_EQ(Outcome(folder), "not supported");
}
