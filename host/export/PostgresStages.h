#ifndef KYR_HOST_EXPORT_POSTGRESSTAGES_H
#define KYR_HOST_EXPORT_POSTGRESSTAGES_H

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Output.h"
#include "export/Tables.h"

/// Rows that wait until they are written as one COPY command.
struct TCopyBlock {
    std::string target;  ///< the table, and the columns in brackets
    std::string rows = {};
};

/// Where the rows of a table go.
struct TStagedTable {
    size_t stage = 0;             ///< number of the temporary table
    std::vector<size_t> columns;  ///< for each column of the table its number there; 0: there is no room for it
    TCopyBlock block;
};

/// The temporary tables into which rows are copied, one for a class. It has the columns of all forms in which the class
/// comes, with numbers for names: which table and columns they end in, the data base decides.
class TPostgresStages {
public:
    explicit TPostgresStages(TOutput& output) : fOutput(output) {}

    /// Writes what makes the temporary table and its columns, when they are first needed.
    TStagedTable& Of(const TTable& table);
    void WriteBlocks();

private:
    struct TStage {
        size_t number;
        std::map<std::pair<std::string, std::string>, size_t> columns;  // numbers by name and type
    };

    TStage& StageFor(const TTable& table);
    size_t AddColumn(const TColumn& column, TStagedTable& staged, TStage& stage);
    size_t NumberOf(const TColumn& column, const std::string& suffix, const std::string& type, TStage& stage);

    TOutput& fOutput;
    TCopyBlock fTables{"kyr_table"}, fColumns{"kyr_column"};
    std::map<std::string, TStage> fStages;  // by class
    std::unordered_map<const TTable*, TStagedTable*> fByTable;
    std::deque<TStagedTable> fStaged;
    size_t fStageCount = 0;
};

void WriteBlock(TCopyBlock& block, TOutput& output);

#endif
