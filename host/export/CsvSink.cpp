#include "export/CsvSink.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Csv.h"
#include "base/ExitStatus.h"
#include "base/Spool.h"
#include "base/Text.h"
#include "export/CellText.h"
#include "export/RunHistory.h"

namespace {

const std::vector<std::string> kRunColumns = {"host", "machine_id", "collected_at"};

/// What stands in front of each waiting line.
struct TLineHead {
    size_t length;
    size_t columns;  // the line has; those that came later are empty
};

class TCsvSink : public IRunSink {
public:
    TCsvSink(TOutput& output, std::string name) : fOutput(output), fName(std::move(name)) {}

    bool WantsPaths() const override { return true; }
    TVerdict Decide(const TRun& run) override { return fHistory.Decide(run); }

    void Begin(const TRun& run) override {
        fRun = run;
        fStart = fLines.Size();
    }

    void Table(const TTable& table) override {
        if (!IsWanted(table)) return;
        RefuseOtherClass(table);
        PlacesFor(table);
    }

    void Row(const TTable& table, TRow&& row) override {
        if (!IsWanted(table)) return;
        const std::vector<size_t>& places = PlacesFor(table);
        std::vector<std::string> texts(fHeader.size());
        texts[0] = fRun.name;
        texts[1] = fRun.machineId;
        texts[2] = fRun.collectedAt;
        for (size_t i = 0; i < row.cells.size(); ++i)
            texts[places[i]] = TextOfCell(row.cells[i], table.columns[i].kind);
        AddLine(CsvLine(texts));
    }

    void End() override { fHistory.Add(fRun); }
    void Abandon() override { fLines.Truncate(fStart); }

    void Finish() override {
        fOutput.Write(CsvLine(fHeader));
        fLines.Rewind();
        while (WriteLine()) continue;
    }

private:
    bool IsWanted(const TTable& table) const {
        return table.className.empty() == IsOwnCsvTable(fName) && IsNamed(table);
    }
    // What is no class of its own stands for classes, as "disks" does, and only rows of these come.
    bool IsNamed(const TTable& table) const { return !table.className.empty() || table.name == fName; }

    void RefuseOtherClass(const TTable& table) {
        if (fClass.empty()) fClass = table.className;
        if (fClass != table.className)
            throw TCommandError(eExitUsage, "'" + VisibleText(fName) + "' stands for several classes, among them " +
                                                fClass + " and " + table.className + ": say which is wanted");
    }

    const std::vector<size_t>& PlacesFor(const TTable& table) {
        const auto [found, isNew] = fPlaces.try_emplace(&table);
        if (isNew)
            for (const TColumn& column : table.columns) found->second.push_back(PlaceFor(column.name));
        return found->second;
    }

    size_t PlaceFor(const std::string& column) {
        const bool isTaken = std::find(kRunColumns.begin(), kRunColumns.end(), column) != kRunColumns.end();
        const std::string name = isTaken ? column + "_" : column;
        const auto found = std::find(fHeader.begin(), fHeader.end(), name);
        if (found != fHeader.end()) return static_cast<size_t>(found - fHeader.begin());
        fHeader.push_back(name);
        return fHeader.size() - 1;
    }

    void AddLine(std::string line) {
        line.resize(line.size() - kLineEnd.size());
        const TLineHead head{line.size(), fHeader.size()};
        char bytes[sizeof head];
        std::memcpy(bytes, &head, sizeof head);
        fLines.Write({bytes, sizeof bytes});
        fLines.Write(line);
    }

    bool WriteLine() {
        const std::string bytes = fLines.Read(sizeof(TLineHead));
        if (bytes.empty()) return false;
        TLineHead head{};
        std::memcpy(&head, bytes.data(), sizeof head);
        fOutput.Write(fLines.Read(head.length) + std::string(fHeader.size() - head.columns, ','));
        fOutput.Write(kLineEnd);
        return true;
    }

    static constexpr std::string_view kLineEnd = "\r\n";

    TOutput& fOutput;
    const std::string fName;
    std::string fClass;
    TRunHistory fHistory{std::numeric_limits<size_t>::max()};
    TRun fRun;
    TSpool fLines;
    size_t fStart = 0;  // of the lines of this run
    std::vector<std::string> fHeader = kRunColumns;
    std::unordered_map<const TTable*, std::vector<size_t>> fPlaces;
};

}  // namespace

bool IsOwnCsvTable(const std::string& name) { return name == ClassStateTable().name || name == ChangeTable().name; }

std::unique_ptr<IRunSink> MakeCsvSink(TOutput& output, const std::string& name) {
    return std::make_unique<TCsvSink>(output, name);
}
