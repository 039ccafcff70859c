#include "export/JsonLinesSink.h"

#include <limits>
#include <string_view>

#include "base/Spool.h"
#include "export/RunHistory.h"
#include "export/TableNames.h"
#include "json/JsonWriter.h"

namespace {

constexpr size_t kChunk = 1 << 16;

void WriteText(TJsonWriter& json, const std::string& text, EColumn kind) {
    kind == EColumn::eJson ? json.Json(text) : json.String(text);
}

void WriteCell(TJsonWriter& json, const TCell& cell, EColumn kind) {
    switch (cell.kind) {
        case TCell::eInteger:
            return kind == EColumn::eBoolean ? json.Boolean(cell.integer != 0)
                                             : json.Integer(std::to_string(cell.integer));
        case TCell::eDigits:
            return json.Integer(cell.text);
        case TCell::eReal:
            return json.Real(cell.real);
        case TCell::eText:
        case TCell::eReference:
            return WriteText(json, cell.text, kind);
        case TCell::eNull:
            return json.Null();
    }
}

class TJsonLinesSink : public IRunSink {
public:
    explicit TJsonLinesSink(TOutput& output)
        : fOutput(output), fLines([this](std::string_view text) { fWaiting.Write(text); }) {}

    bool WantsPaths() const override { return true; }
    TVerdict Decide(const TRun& run) override { return fHistory.Decide(run); }

    void Begin(const TRun& run) override {
        fRun = run;
        WriteRun();
    }

    void Table(const TTable& table) override { fNames.Of(table); }

    void Row(const TTable& table, TRow&& row) override {
        const std::string& name = fNames.Of(table);
        TJsonWriter json(fLines, TJsonWriter::ELayout::eOneLine);
        StartLine(json, name);
        WriteIfAny(json, "key", row.key);
        json.Key(name);
        json.StartObject();
        for (size_t i = 0; i < row.cells.size(); ++i) {
            if (row.cells[i].kind == TCell::eNull) continue;
            json.Key(table.columns[i].name);
            WriteCell(json, row.cells[i], table.columns[i].kind);
        }
        json.EndObject();
        WriteMissing(json, table, row);
        json.EndObject();
    }

    void End() override {
        fHistory.Add(fRun);
        fWaiting.Rewind();
        for (std::string chunk = fWaiting.Read(kChunk); !chunk.empty(); chunk = fWaiting.Read(kChunk))
            fOutput.Write(chunk);
        fWaiting.Truncate(0);
    }

    void Abandon() override { fWaiting.Truncate(0); }
    void Finish() override {}

private:
    void StartLine(TJsonWriter& json, const std::string& name) {
        json.StartObject();
        WriteIfAny(json, "host", fRun.name);
        WriteIfAny(json, "machine_id", fRun.machineId);
        WriteIfAny(json, "time", fRun.collectedAt);
        json.Key("class");
        json.String(name);
    }

    void WriteRun() {
        constexpr const char* kName = "run";
        TJsonWriter json(fLines, TJsonWriter::ELayout::eOneLine);
        StartLine(json, kName);
        json.Key(kName);
        json.StartObject();
        WriteIfAny(json, "uuid", fRun.uuid);
        WriteIfAny(json, "serial", fRun.serial);
        WriteIfAny(json, "tool", fRun.tool);
        WriteIfAny(json, "tool_version", fRun.toolVersion);
        if (fRun.superuser) {
            json.Key("superuser");
            json.Boolean(*fRun.superuser);
        }
        WriteIfAny(json, "state", fRun.state);
        WriteIfAny(json, "reason_code", fRun.reasonCode);
        WriteIfAny(json, "reason", fRun.reason);
        WriteIfAny(json, "file", fRun.file);
        json.EndObject();
        json.EndObject();
    }

    static void WriteMissing(TJsonWriter& json, const TTable& table, const TRow& row) {
        if (row.missing.empty()) return;
        json.Key("missing");
        json.StartObject();
        for (const TMissingValue& missing : row.missing) {
            json.Key(table.columns[missing.column].name);
            json.String(missing.source.empty() ? missing.reason : missing.reason + ": " + missing.source);
        }
        json.EndObject();
    }

    TOutput& fOutput;
    TSpool fWaiting;  // the lines of a run that may still be abandoned
    TOutput fLines;
    TTableNames fNames;
    TRunHistory fHistory{std::numeric_limits<size_t>::max()};
    TRun fRun;
};

}  // namespace

std::unique_ptr<IRunSink> MakeJsonLinesSink(TOutput& output) { return std::make_unique<TJsonLinesSink>(output); }
