#include <CLI/App.hpp>

#include "base/Locations.h"
#include "base/NearMatches.h"
#include "check/Check.h"
#include "command/Command.h"
#include "json/Json.h"
#include "render/FindingsText.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kyr check plugins/entropy\n"
    "  kyr check entropy.properties.xml --fail-on warning\n"
    "  kyr check --explain S03\n\n"
    "Exit status: 0 nothing found, 1 something is wrong, 2 wrong use,\n"
    "3 something could not be read, 4 the output could not be written.";

constexpr ELevel kLevels[] = {ELevel::eError, ELevel::eWarning, ELevel::eNote};

std::string CheckLevel(const std::string& word) {
    for (const ELevel level : kLevels)
        if (word == NameOf(level)) return "";
    return "'" + word + "' is none of error, warning, note";
}

std::string CheckRule(const std::string& id) {
    if (FindRule(id) != nullptr) return "";
    std::vector<std::string> ids;
    for (const TRule& rule : AllRules()) ids.emplace_back(rule.id);
    return "unknown rule '" + id + "'" + DidYouMean(id, ids);
}

class TCheckCommand : public TCommand {
public:
    explicit TCheckCommand(CLI::App& app)
        : TCommand(app, "check", "Tell what is wrong with documents, libraries and saved collections") {
        fApp.footer(kExamples);
        RemoveUnused();
        fApp.add_option("PATH", fPaths, "A document, a library, a folder with them, or a saved collection")
            ->type_name("")
            ->check(CheckNotEmpty);
        fApp.add_option("--fail-on", fFailOn, "The least level that makes the exit status 1")
            ->type_name("error|warning|note")
            ->check(CheckLevel)
            ->capture_default_str();
        fApp.add_flag("--sarif", fSarif, "Print SARIF 2.1.0, which code hosts and editors read");
        fApp.add_flag("--rules", fRules, "List all rules");
        fApp.add_option("--explain", fRule, "Explain one rule")->type_name("RULE")->check(CheckRule);
    }

    // Nothing is collected, so the current folder stays, and paths are printed as they were given.
    void ResolvePaths() override {
        fSession.plugins = FindPluginFolders(fPlugins);
        if (fSession.schema.empty()) fSession.schema = FindDefaultSchema();
    }

    EExit Run(TOutput& output) override {
        if (fRules) return PrintRules(output), eExitComplete;
        if (!fRule.empty()) return PrintRule(*FindRule(fRule), output), eExitComplete;
        if (fPaths.empty()) throw TCommandError(eExitUsage, "no PATH given (try 'kyr check --help')");
        bool isRead = true;
        const std::vector<TTarget> targets = FindAllTargets(isRead);
        if (targets.empty()) return eExitNothing;
        TFindings findings;
        isRead &= Check(targets, findings);
        Print(findings, output);
        if (!isRead) return eExitNothing;
        return IsFailure(findings) ? eExitPartial : eExitComplete;
    }

private:
    // Of what all commands take.
    void RemoveUnused() {
        for (const char* const option : {"--from", "--log", "--verbose"}) fApp.remove_option(fApp.get_option(option));
    }

    // Of those that it cannot find it tells on standard error.
    std::vector<TTarget> FindAllTargets(bool& isRead) const {
        std::vector<TTarget> targets;
        for (const std::string& path : fPaths) try {
                for (TTarget& target : FindTargets(path)) targets.push_back(std::move(target));
            } catch (const TCommandError& e) {
                PrintDiagnostic(e.what());
                isRead = false;
            }
        return targets;
    }

    bool Check(const std::vector<TTarget>& targets, TFindings& findings) const {
        TCheckContext context{fSession.schema};
        for (const TPluginFolder& folder : fSession.plugins) context.plugins.push_back(folder.path);
        return CheckTargets(targets, context, findings);
    }

    void Print(const TFindings& findings, TOutput& output) const {
        if (fSarif) return WriteSarif(findings, output);
        fJson ? WriteCheckJson(findings, output) : PrintFindings(findings, output);
    }

    bool IsFailure(const TFindings& findings) const {
        for (const ELevel level : kLevels) {
            if (findings.Count(level) > 0) return true;
            if (fFailOn == NameOf(level)) break;
        }
        return false;
    }

    std::vector<std::string> fPaths;
    std::string fFailOn = NameOf(ELevel::eError);
    std::string fRule;
    bool fRules = false;
    bool fSarif = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeCheckCommand(CLI::App& app) { return std::make_unique<TCheckCommand>(app); }
