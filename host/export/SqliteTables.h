#ifndef KYR_HOST_EXPORT_SQLITETABLES_H
#define KYR_HOST_EXPORT_SQLITETABLES_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "export/RunSink.h"
#include "export/Sqlite.h"

/// Which run and host rows are of.
struct TOwner {
    int64_t run = 0;
    int64_t host = 0;
};

/// The tables of classes in a data base of SQLite. Tables and columns that are not there are made; none is changed or
/// dropped.
class TSqliteTables {
public:
    /// Needs a transaction. What another process adds later is not seen.
    explicit TSqliteTables(const TSqliteFile& file);

    /// Makes sure that there is such a table.
    void Ensure(const TTable& table) { (void)TargetOf(table); }
    void Insert(const TTable& table, const TRow& row, const TOwner& owner);
    /// Removes all rows of a run, but for those of changes.
    void RemoveRun(int64_t run);

private:
    /// One column in the data base, and what of a cell stands there.
    struct TPlace {
        enum EWhat : uint8_t { eCell, eRow, ePath };

        size_t cell;
        EWhat what;
        int parameter;  // 0: there is no room for the column
        std::string name;
    };
    /// Where the rows of a table go.
    struct TTarget {
        std::string name;
        std::vector<TPlace> places;
        std::unique_ptr<TSqliteStatement> insert;
        bool hasRowIds = false;
    };
    /// A table in the data base.
    struct TStored {
        std::string className;
        std::map<std::string, std::string> types;  // by the name of the column
        std::unique_ptr<TSqliteStatement> removeRun;
    };

    TTarget& TargetOf(const TTable& table);
    TTarget MakeTarget(const TTable& table);
    TStored& Load(const std::string& name, const std::string& className);
    std::string NameFor(const TTable& table) const;
    void Create(const std::string& name, const TTable& table, TStored& stored);
    TPlace PlaceFor(const TTable& table, const std::string& name, TStored& stored, size_t cell, TPlace::EWhat what);
    bool AddColumn(const std::string& table, const std::string& name, const std::string& type, TStored& stored);
    void Describe(const std::string& table, const std::string& name, const TTable& of, const TColumn& column);
    void Prepare(TTarget& target) const;
    std::string BindPlace(TSqliteStatement& insert, const TPlace& place, const TCell& cell) const;
    void InsertMissing(const TTarget& target, const TRow& row, size_t cell, const std::string& reason,
                       const std::string& source, const TOwner& owner);

    const TSqliteFile& fFile;
    std::map<std::string, TStored> fStored;  // by name
    std::unordered_map<const TTable*, TTarget> fTargets;
    TSqliteStatement fInsertMissing;
    TSqliteStatement fInsertInfo;
};

#endif
