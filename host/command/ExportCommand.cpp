#include <CLI/App.hpp>

#include "command/Command.h"
#include "export/Fleet.h"
#include "export/SqliteSink.h"

namespace {

class TExportCommand : public TCommand {
public:
    explicit TExportCommand(CLI::App& app)
        : TCommand(app, "export", "Write saved collections as tables of a data base", EOptions::eNone) {
        fApp.footer(kExitStatusText);
        fApp.add_option("--sqlite", fSqlite, "Write to this data base of SQLite, which is made if it is not there")
            ->type_name("FILE")
            ->required()
            ->check(CheckNotEmpty);
        fApp.add_option("--class", fOptions.classes, "Only this class and its subclasses; may be repeated")
            ->type_name("NAME")
            ->allow_extra_args(false);
        fApp.add_option("--keep-runs", fKeepRuns, "Keep so many runs of each host")->type_name("N")->default_val(1);
        fApp.add_option("COLLECTION", fFiles, "Saved collections")->type_name("")->required();
    }

    void ResolvePaths() override { MakeAbsolute(fSqlite); }

    EExit Run(TOutput&) override {
        std::vector<TSource> sources;
        for (const std::string& file : fFiles) sources.push_back({file, file});
        const auto sink = OpenSqliteSink(fSqlite, fKeepRuns);
        const TFleetCounts counts = ExportFiles(sources, fOptions, *sink);
        sink->Finish();
        PrintDiagnostic(TextOf(counts));
        return counts.unreadable == 0 ? eExitComplete : eExitPartial;
    }

private:
    std::string fSqlite;
    std::vector<std::string> fFiles;
    TFleetOptions fOptions;
    size_t fKeepRuns = 1;
};

}  // namespace

std::unique_ptr<TCommand> MakeExportCommand(CLI::App& app) { return std::make_unique<TExportCommand>(app); }
