#include "check/TrialRuns.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include "base/ExitStatus.h"
#include "base/Signals.h"
#include "base/TimePoint.h"
#include "check/GivenTexts.h"
#include "check/RunRules.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "saved/SavedCollection.h"
#include "states/StateInstances.h"

namespace fs = std::filesystem;

namespace {

class TTemporaryFolder {
public:
    TTemporaryFolder() {
        std::error_code error;
        std::string path = (fs::temp_directory_path(error) / "kyr-check-XXXXXX").string();
        if (error || mkdtemp(path.data()) == nullptr)
            throw TCommandError(eExitNothing,
                                "cannot make a temporary folder to try plugins in: set TMPDIR to a folder");
        fPath = path;
    }
    ~TTemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(fPath, ignored);
    }
    TTemporaryFolder(const TTemporaryFolder&) = delete;
    TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;

    const fs::path& Path() const { return fPath; }

private:
    fs::path fPath;
};

struct TInterrupted {
    int signal;
};

// Hands on to it what interrupts this process.
void WaitFor(pid_t process, TInterruptions& interruptions) {
    constexpr double kSeconds = 1;
    for (int status = 0; waitpid(process, &status, WNOHANG) == 0;)
        if (interruptions.WaitUntil(After(TClock::now(), kSeconds)) >= ESignalMeaning::eInterruption)
            kill(process, interruptions.Signal());
    if (interruptions.Signal() != 0) throw TInterrupted{interruptions.Signal()};
}

// What it prints is not wanted: the file says all. Raises TInterrupted.
void RunKyr(std::vector<std::string> arguments) {
    TInterruptions interruptions([](const TSignal&) { return false; });
    std::vector<char*> words;
    words.reserve(arguments.size() + 2);
    arguments.insert(arguments.begin(), "kyr");
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    pid_t process = 0;
    const int error = posix_spawn(&process, "/proc/self/exe", &actions, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw TCommandError(eExitNothing, "cannot run kyr to try the plugins");
    WaitFor(process, interruptions);
}

fs::path PathOf(const std::string& library) { return fs::absolute(library).lexically_normal(); }

/// Four runs of the plugins of libraries in one plugin folder.
class TTrial {
public:
    TTrial(const std::vector<std::string>& libraries, const TCheckContext& context) : fContext(context) {
        fs::create_directory(fFolder.Path() / "plugins");
        for (const std::string& library : libraries) Link(PathOf(library).parent_path());
        for (const std::string& folder : context.plugins) LinkAll(folder);
        for (const auto& container : {fFirst.get(), fSecond.get()}) Collect(*container, {});
        const std::vector<std::string> part = EveryOtherClass(libraries);
        if (!part.empty()) Collect(*fPart, part);
        // In a run of its own: with all these lines, a plugin may deliver more than it can.
        RunKyr(CollectTo("collection.xml", {"--verbose", "--log", LogFile()}));
    }

    void Check(const std::string& library, TFindings& findings) const {
        const std::vector<const TCIMInstance*> plugins = PluginsOf(library);
        const TReported reported{*fFirst, ClassesOf(plugins), library, plugins};
        CheckOutcomes(reported, findings);
        CheckInstances(reported, findings);
        CompareRuns(reported, *fSecond, findings);
        CompareWithPart(reported, *fSecond, *fPart, findings);
        CheckGivenTexts(reported, LogFile(), findings);
    }

private:
    // The first of two plugins whose folders have one name counts.
    void Link(const fs::path& plugin) {
        std::error_code ignored;
        fs::create_directory_symlink(plugin, fFolder.Path() / "plugins" / plugin.filename(), ignored);
    }

    void LinkAll(const fs::path& plugins) {
        std::error_code error, ignored;
        for (const fs::directory_entry& entry : fs::directory_iterator(plugins, error))
            if (entry.is_directory(ignored)) Link(fs::absolute(entry.path()));
    }

    std::string LogFile() const { return (fFolder.Path() / "log").string(); }

    std::vector<std::string> CollectTo(const char* file, const std::vector<std::string>& options) const {
        std::vector<std::string> words = {
            "collect", "--plugins", (fFolder.Path() / "plugins").string(), "--schema", fContext.schema, "--timeout",
            "10",      "-o",        (fFolder.Path() / file).string()};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    void Collect(TContainer& container, const std::vector<std::string>& options) const {
        RunKyr(CollectTo("collection.xml", options));
        ReadCollection((fFolder.Path() / "collection.xml").string(), container);
    }

    std::vector<const TCIMInstance*> PluginsOf(const std::string& library) const {
        const fs::path path = PathOf(library);
        const std::string name = "./" + (path.parent_path().filename() / path.filename()).string();
        std::vector<const TCIMInstance*> plugins;
        for (const TCIMInstance* state : StatesOf(*fFirst, kCollectedPluginClass))
            if (TextOf(*state, "Library") == name) plugins.push_back(state);
        return plugins;
    }

    // The options that ask for them: of the classes of the libraries those of which a run gave instances.
    std::vector<std::string> EveryOtherClass(const std::vector<std::string>& libraries) const {
        std::vector<std::string> options;
        bool isWanted = true;
        for (const std::string& library : libraries)
            for (const TCIMClass* cls : ClassesOf(PluginsOf(library))) {
                if (cls->EnumerateInstances(false).empty()) continue;
                if (isWanted) options.insert(options.end(), {"--class", cls->GetName()});
                isWanted = !isWanted;
            }
        return options;
    }

    std::vector<TCIMClass*> ClassesOf(const std::vector<const TCIMInstance*>& plugins) const {
        std::set<std::string> names;
        for (const TCIMInstance* plugin : plugins) names.insert(TextOf(*plugin, "Name"));
        std::vector<TCIMClass*> classes;
        for (const TCIMInstance* state : StatesOf(*fFirst, kCollectedClassClass))
            if (names.count(TextOf(*state, "Plugin")) != 0)
                if (TCIMClass* const cls = FindClassNamed(*fFirst, TextOf(*state, "Name"))) classes.push_back(cls);
        return classes;
    }

    const TCheckContext& fContext;
    const TTemporaryFolder fFolder;
    const std::unique_ptr<TContainer> fFirst = std::make_unique<TContainer>();
    const std::unique_ptr<TContainer> fSecond = std::make_unique<TContainer>();
    const std::unique_ptr<TContainer> fPart = std::make_unique<TContainer>();
};

}  // namespace

void CheckRuns(const std::vector<std::string>& libraries, const TCheckContext& context, TFindings& findings) {
    std::map<std::string, std::vector<std::string>> folders;
    for (const std::string& library : libraries)
        folders[PathOf(library).parent_path().parent_path().string()].push_back(library);
    for (const auto& [plugins, ofFolder] : folders) {
        try {
            const TTrial trial(ofFolder, context);
            for (const std::string& library : ofFolder) trial.Check(library, findings);
        } catch (const TInterrupted& interrupted) {
            EndBySignal(interrupted.signal);  // the temporary folder is gone by now
        }
    }
}
