#include "export/PostgresSink.h"

#include <utility>

#include "export/CellText.h"
#include "export/HostKey.h"
#include "export/PostgresStages.h"
#include "export/PostgresText.h"
#include "export/RunHistory.h"

namespace {

constexpr size_t kMostWaiting = 4 << 20;  // bytes of rows

class TPostgresSink : public IRunSink {
public:
    TPostgresSink(TOutput& output, size_t keepRuns) : fOutput(output), fStages(output), fHistory(keepRuns) {
        fOutput.Write(kPostgresStart);
        fOutput.Write("SET LOCAL kyr.keep_runs = " + std::to_string(keepRuns) + ";\n");
        for (const TTable* own : {&ClassStateTable(), &ChangeTable()}) fStages.Of(*own);
    }

    TVerdict Decide(const TRun& run) override { return fHistory.Decide(run); }

    void Begin(const TRun& run) override {
        fRun = run;
        ++fRunNumber;
    }

    void Table(const TTable& table) override { fStages.Of(table); }

    void Row(const TTable& table, TRow&& row) override {
        TStagedTable& staged = fStages.Of(table);
        WriteCells(table, row, staged);
        for (const TMissingValue& missing : row.missing) WriteMissing(table, staged, row.id, missing);
        if (fWaiting > kMostWaiting) WriteBlocks();
    }

    // Rows of a run that is not among these are not looked at.
    void End() override {
        TCopyLine line(fRuns.rows);
        line.Integer(fRunNumber).TextOrNull(fRun.file).Text(HostKeyOf(fRun)).TextOrNull(fRun.name);
        for (const std::string* text : {&fRun.machineId, &fRun.uuid, &fRun.serial}) line.TextOrNull(*text);
        line.Text(fRun.collectedAt).TextOrNull(fRun.tool).TextOrNull(fRun.toolVersion);
        fRun.superuser ? line.Text(*fRun.superuser ? "t" : "f") : line.Null();
        for (const std::string* text : {&fRun.state, &fRun.reasonCode, &fRun.reason}) line.TextOrNull(*text);
        line.Text(std::to_string(fRun.fingerprint)).End();
        fHistory.Add(fRun);
    }

    void Abandon() override {}

    void Finish() override {
        WriteBlocks();
        fOutput.Write(kPostgresLoad);
    }

private:
    void WriteCells(const TTable& table, const TRow& row, TStagedTable& staged) {
        std::string& rows = staged.block.rows;
        const size_t before = rows.size();
        TCopyLine line(rows);
        line.Integer(fRunNumber).Integer(row.id);
        for (size_t i = 0; i < row.cells.size(); ++i)
            staged.columns[i] != 0 ? WriteCell(row.cells[i], table.columns[i], line)
                                   : WriteLeftOut(table, staged, row, i);
        line.End();
        fWaiting += rows.size() - before;
    }

    static void WriteCell(const TCell& cell, const TColumn& column, TCopyLine& line) {
        if (column.kind != EColumn::eReference) return (void)line.Cell(cell, column.kind);
        cell.integer != 0 ? line.Integer(cell.integer) : line.Null();
        line.TextOrNull(cell.text);
    }

    void WriteLeftOut(const TTable& table, const TStagedTable& staged, const TRow& row, size_t column) {
        const std::string value = TextOfCell(row.cells[column], table.columns[column].kind);
        if (value.empty()) return;
        WriteMissing(table, staged, row.id, {column, "the table has no room for more columns: " + value, ""});
    }

    void WriteMissing(const TTable& table, const TStagedTable& staged, int64_t row, const TMissingValue& missing) {
        const size_t before = fMissing.rows.size();
        TCopyLine line(fMissing.rows);
        line.Integer(fRunNumber).Integer(static_cast<int64_t>(staged.stage)).Integer(row);
        line.Integer(static_cast<int64_t>(staged.columns[missing.column])).Text(table.columns[missing.column].name);
        line.Text(missing.reason).TextOrNull(missing.source).End();
        fWaiting += fMissing.rows.size() - before;
    }

    void WriteBlocks() {
        fStages.WriteBlocks();
        WriteBlock(fRuns, fOutput);
        WriteBlock(fMissing, fOutput);
        fWaiting = 0;
    }

    TOutput& fOutput;
    TPostgresStages fStages;
    TRunHistory fHistory;
    TRun fRun;
    int64_t fRunNumber = 0;
    TCopyBlock fRuns{"kyr_run"}, fMissing{"kyr_missing"};
    size_t fWaiting = 0;
};

}  // namespace

std::unique_ptr<IRunSink> MakePostgresSink(TOutput& output, size_t keepRuns) {
    return std::make_unique<TPostgresSink>(output, keepRuns);
}
