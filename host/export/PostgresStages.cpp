#include "export/PostgresStages.h"

#include "export/PostgresText.h"

namespace {

// A row of PostgreSQL must fit a page of 8 kB. Long values are stored elsewhere, so that none takes more than 24 bytes.
constexpr size_t kMostColumnsOfRow = 320;
// PostgreSQL takes 1600. The forms of a class have most columns in common.
constexpr size_t kMostColumnsOfStage = 1500 - kMostColumnsOfRow;

std::string StageName(size_t number) { return "kyr_stage_" + std::to_string(number); }
std::string ColumnName(size_t number) { return "c" + std::to_string(number); }

}  // namespace

void WriteBlock(TCopyBlock& block, TOutput& output) {
    if (block.rows.empty()) return;
    output.Write("COPY " + block.target + " FROM stdin;\n");
    output.Write(block.rows);
    output.Write("\\.\n");
    block.rows.clear();
}

TStagedTable& TPostgresStages::Of(const TTable& table) {
    TStagedTable*& staged = fByTable[&table];
    if (staged != nullptr) return *staged;
    staged = &fStaged.emplace_back();
    TStage& stage = StageFor(table);
    staged->stage = stage.number;
    staged->block.target = StageName(stage.number) + " (run, id";
    size_t used = 0;
    for (const TColumn& column : table.columns) {
        used += column.kind == EColumn::eReference ? 2 : 1;
        staged->columns.push_back(used > kMostColumnsOfRow ? 0 : AddColumn(column, *staged, stage));
    }
    staged->block.target += ")";
    return *staged;
}

void TPostgresStages::WriteBlocks() {
    WriteBlock(fTables, fOutput);
    WriteBlock(fColumns, fOutput);
    for (TStagedTable& staged : fStaged) WriteBlock(staged.block, fOutput);
}

TPostgresStages::TStage& TPostgresStages::StageFor(const TTable& table) {
    TStage& stage = fStages[table.className.empty() ? table.name : table.className];
    if (stage.number != 0 && stage.columns.size() <= kMostColumnsOfStage) return stage;
    stage = {++fStageCount, {}};
    fOutput.Write("CREATE TEMPORARY TABLE " + StageName(stage.number) + " (run integer, id integer) ON COMMIT DROP;\n");
    TCopyLine line(fTables.rows);
    line.Integer(static_cast<int64_t>(stage.number)).Text(table.name).Text(table.nameWithPrefix);
    line.TextOrNull(table.className).End();
    return stage;
}

// A reference is two columns in the data base.
size_t TPostgresStages::AddColumn(const TColumn& column, TStagedTable& staged, TStage& stage) {
    const bool isReference = column.kind == EColumn::eReference;
    const std::string type = PostgresType(column);
    const size_t first =
        isReference ? NumberOf(column, kIdSuffix, "integer", stage) : NumberOf(column, "", type, stage);
    staged.block.target += ", " + ColumnName(first);
    if (isReference) staged.block.target += ", " + ColumnName(NumberOf(column, kPathSuffix, type, stage));
    return first;
}

size_t TPostgresStages::NumberOf(const TColumn& column, const std::string& suffix, const std::string& type,
                                 TStage& stage) {
    const std::string name = column.name + suffix;
    size_t& number = stage.columns[{name, type}];
    if (number != 0) return number;
    number = stage.columns.size();
    fOutput.Write("ALTER TABLE " + StageName(stage.number) + " ADD COLUMN " + ColumnName(number) + " " + type + ";\n");
    TCopyLine line(fColumns.rows);
    line.Integer(static_cast<int64_t>(stage.number)).Integer(static_cast<int64_t>(number)).Text(name);
    line.Text(ShortName(name + TypeSuffix(column.kind))).Text(type).TextOrNull(column.property);
    line.TextOrNull(column.cimType).TextOrNull(column.unit).TextOrNull(column.declaredUnit);
    line.TextOrNull(column.description).TextOrNull(column.nullMeaning).Text(column.isVolatile ? "t" : "f").End();
    return number;
}
