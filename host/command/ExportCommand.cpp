#include <CLI/App.hpp>
#include <optional>

#include "base/OutputFile.h"
#include "base/Spool.h"
#include "base/Text.h"
#include "command/CollectionList.h"
#include "command/Command.h"
#include "export/CsvSink.h"
#include "export/CycloneDx.h"
#include "export/Fleet.h"
#include "export/JsonLinesSink.h"
#include "export/PostgresSink.h"
#include "export/SqliteSink.h"
#include "inventory/Inventory.h"
#include "kyr/TContainer.h"
#include "model/InstanceChoice.h"
#include "saved/SavedCollection.h"

namespace {

constexpr const char* kNotes =
    "A collection is a file that kyr collect -o has saved, @LIST for the files that\n"
    "the file LIST names, one on a line, or - for standard input, which is a\n"
    "collection or such names. Without one, this machine is collected. The tables\n"
    "and their columns are told in export.md of the documentation.\n\n"
    "Examples:\n"
    "  kyr export --sqlite fleet.db *.xml.gz\n"
    "  find inventory -name '*.xml.gz' -print0 | kyr export --sqlite fleet.db -\n"
    "  kyr export --postgres *.xml.gz | psql fleet\n"
    "  kyr export --postgres yesterday/db01.xml.gz today/db01.xml.gz | psql fleet\n"
    "  kyr export --jsonl --class disks -o disks.jsonl @machines.txt\n"
    "  kyr export --csv packages machine.xml.gz\n"
    "  kyr export --cyclonedx -o machine.cdx.json\n\n"
    "Exit status: 0 complete, 1 a collection could not be read, the others are\n"
    "written, or this machine was not completely collected, 2 wrong use,\n"
    "3 nothing could be collected or read, 4 the output could not be written.";

constexpr size_t kMostRuns = 1000000;

std::string CheckRuns(const std::string& text) {
    const bool isNumber = !text.empty() && text.size() < 8 && text.find_first_not_of("0123456789") == std::string::npos;
    const size_t runs = isNumber ? std::stoul(text) : 0;
    return runs >= 1 && runs <= kMostRuns ? "" : "'" + text + "' is no number of runs from 1 to 1000000";
}

/// The file of --output, or standard output.
class TTarget {
public:
    TTarget(const std::string& path, TOutput& output) : fStandard(output) {
        if (path.empty()) return;
        fFile.emplace(path, EndsWith(path, ".gz"));
        fToFile.emplace([this](std::string_view text) { fFile->Write(text); });
    }

    TOutput& Output() { return fToFile ? *fToFile : fStandard; }
    void Finish() {
        if (fFile) fFile->Finish();
    }

private:
    TOutput& fStandard;
    std::optional<TOutputFile> fFile;
    std::optional<TOutput> fToFile;
};

class TExportCommand : public TCommand {
public:
    explicit TExportCommand(CLI::App& app)
        : TCommand(app, "export", "Write collections as tables for data bases and other programs") {
        fApp.remove_option(fApp.get_option("--json"));
        fApp.footer(kNotes);
        fApp.add_option("COLLECTION", fCollections, "A saved collection, @LIST, or - for standard input")
            ->type_name("")
            ->check(CheckNotEmpty);
        AddForms();
        AddBillOptions();
        fApp.add_option("--class", fOptions.classes, "Only this class and its subclasses; may be repeated")
            ->type_name("NAME")
            ->allow_extra_args(false);
        fApp.add_option("--keep-runs", fKeepRuns, "How many runs of each host a data base keeps")
            ->type_name("N")
            ->check(CheckRuns)
            ->capture_default_str();
        fApp.add_option("-o,--output", fOutput, "Write to this file, compressed if its name ends with .gz")
            ->type_name("FILE")
            ->check(CheckNotEmpty);
        AddCollecting();
    }

    void ResolvePaths() override {
        if (!fSession.from.empty()) fCollections.insert(fCollections.begin(), fSession.from);
        MakeAbsolute(fSqlite);
        MakeAbsolute(fOutput);
        if (fCollections.empty()) TCommand::ResolvePaths();
    }

    EExit Run(TOutput& output) override {
        RequireForm();
        if (fCycloneDx) return ExportBill(output);
        return fCollections.empty() ? ExportMachine(output) : ExportSaved(output);
    }

private:
    void AddForms() {
        fApp.add_option("--sqlite", fSqlite, "A data base of SQLite, which is made or brought up to date")
            ->type_name("FILE")
            ->check(CheckNotEmpty);
        fApp.add_flag("--postgres", fPostgres, "A text for psql, which does the same with one of PostgreSQL");
        fApp.add_flag("--jsonl", fJsonLines, "A line of JSON for each instance");
        fApp.add_option("--csv", fCsvClass, "Comma-separated values of one class, or class_state or change")
            ->type_name("CLASS")
            ->check(CheckNotEmpty);
        fApp.add_flag("--cyclonedx", fCycloneDx, "A bill of materials of one machine, as CycloneDX 1.6");
    }

    void AddBillOptions() {
        fApp.add_flag("--identifiers", fBill.identifiers,
                      "In a bill of materials: serial numbers, addresses and names");
        fApp.add_flag("--source-packages", fBill.sourcePackages, "In a bill of materials: the source packages, too");
        fApp.add_flag("--stable", fBill.stable, "In a bill of materials: no time, so that two can be compared");
    }

    void RequireForm() const {
        if (fSqlite.empty() && !fPostgres && !fJsonLines && fCsvClass.empty() && !fCycloneDx)
            throw TCommandError(
                eExitUsage,
                "say what is to be written: --sqlite FILE, --postgres, --jsonl, --csv CLASS or --cyclonedx");
        if (!fCycloneDx && (fBill.identifiers || fBill.sourcePackages || fBill.stable))
            throw TCommandError(eExitUsage, "--identifiers, --source-packages and --stable belong to --cyclonedx");
        if (fCycloneDx && (fCollections.size() > 1 || (!fCollections.empty() && fCollections[0][0] == '@')))
            throw TCommandError(eExitUsage, "--cyclonedx writes a document of one machine: name one collection");
    }

    // What is missing of a saved collection is part of the document.
    EExit ExportBill(TOutput& output) {
        const bool isSaved = !fCollections.empty();
        if (isSaved) fSession.from = fCollections.front();
        TInventory inventory(fSession);
        inventory.Collect(CycloneDxClasses());
        const EExit status = isSaved ? inventory.ConcludeSilently() : inventory.Conclude();
        if (status == eExitNothing) return status;
        TTarget target(fOutput, output);
        WriteCycloneDx(inventory.Container(), fBill, target.Output());
        target.Finish();
        return isSaved ? eExitComplete : status;
    }

    EExit ExportSaved(TOutput& output) {
        const TCollectionList collections(fCollections);
        const TFleetCounts counts = Export(collections.Sources(), output);
        PrintDiagnostic(TextOf(counts));
        if (counts.unreadable == counts.files) return eExitNothing;
        return counts.unreadable == 0 ? eExitComplete : eExitPartial;
    }

    EExit ExportMachine(TOutput& output) {
        TInventory inventory(fSession);
        const std::vector<std::string> classes = WantedClasses();
        const TInstanceChoice choice = inventory.LookUp(
            [&classes](const TContainer& container) { return TInstanceChoice(container, classes, {}); });
        inventory.Collect(choice.ClassesToCollect(), choice.ClassesNamed());
        const EExit status = inventory.Conclude();
        if (status == eExitNothing) return status;
        const TSpool document;
        SaveCollection(inventory.Container(), document.Path(), false, nullptr);
        const TFleetCounts counts = Export({{document.Path(), ""}}, output);
        return counts.unreadable == 0 ? status : eExitNothing;
    }

    std::vector<std::string> WantedClasses() const {
        if (fCsvClass.empty()) return fOptions.classes;
        return IsOwnCsvTable(fCsvClass) ? std::vector<std::string>() : std::vector<std::string>{fCsvClass};
    }

    TFleetCounts Export(const std::vector<TSource>& sources, TOutput& output) {
        fOptions.classes = WantedClasses();
        TTarget target(fOutput, output);
        const std::unique_ptr<IRunSink> sink = MakeSink(target.Output());
        const TFleetCounts counts = ExportFiles(sources, fOptions, *sink);
        if (!counts.unknownClasses.empty() && counts.unreadable < counts.files)
            throw TCommandError(eExitUsage,
                                "no collection knows the class '" + Join(counts.unknownClasses, "' or '") + "'");
        sink->Finish();
        target.Finish();
        return counts;
    }

    std::unique_ptr<IRunSink> MakeSink(TOutput& output) const {
        if (!fSqlite.empty()) return OpenSqliteSink(fSqlite, fKeepRuns);
        if (fPostgres) return MakePostgresSink(output, fKeepRuns);
        if (fJsonLines) return MakeJsonLinesSink(output);
        return MakeCsvSink(output, fCsvClass);
    }

    std::vector<std::string> fCollections;
    std::string fSqlite;
    bool fPostgres = false;
    bool fJsonLines = false;
    std::string fCsvClass;
    bool fCycloneDx = false;
    TCycloneDxOptions fBill;
    std::string fOutput;
    TFleetOptions fOptions;
    size_t fKeepRuns = 1;
};

}  // namespace

std::unique_ptr<TCommand> MakeExportCommand(CLI::App& app) { return std::make_unique<TExportCommand>(app); }
