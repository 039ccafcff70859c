#include "KyrRun.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace fs = std::filesystem;

namespace {

// A plugin that crashes is to do so by itself, and what its open instance leaves is meant: see host/leaks.supp.
#if defined(__SANITIZE_ADDRESS__)
constexpr const char* kSanitizers =
    "ASAN_OPTIONS=handle_segv=0 LSAN_OPTIONS=print_suppressions=0:suppressions=" LEAKS " ";
#else
constexpr const char* kSanitizers = "";
#endif

}  // namespace

void PrintTo(const TRunResult& run, std::ostream* stream) {
    *stream << "exit status " << run.status << ", output:\n" << run.out << "errors:\n" << run.err;
}

TRunResult RunShell(const std::string& command) {
    const TempFolder folder;
    const std::string out = folder.Write("out", ""), err = folder.Write("err", "");
    const int status = std::system(("{ " + command + "\n} >" + out + " 2>" + err).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(out), ReadFile(err)};
}

TRunResult RunKyr(const std::string& arguments, const std::string& environment) {
    return RunShell("env COLUMNS= KYR_PLUGIN_PATH= " + std::string(kSanitizers) + environment + " " KYR_PROGRAM " " +
                    arguments);
}

TRunResult RunKyrOn(const std::string& machine, const std::string& arguments) {
    return RunKyr(arguments, "TZ=UTC KYR_SYSTEM_ROOT=" MACHINES "/" + machine);
}

TPluginRoot::TPluginRoot(std::initializer_list<const char*> fixtures) {
    fs::create_directory_symlink(SYSTEM_PLUGINS "/system", Path() + "/system");
    for (const std::string name : fixtures)
        fs::create_directory_symlink(FIXTURE_PLUGINS "/" + name, Path() + "/" + name);
}

void CopyLibrary(const std::string& fixture, const std::string& target) {
    fs::create_directories(fs::path(target).parent_path());
    fs::copy_file(FIXTURE_PLUGINS "/" + fixture + "/lib" + fixture + ".pi.so", target);
}

TRunResult RunKyrWith(std::initializer_list<const char*> fixtures, const std::string& arguments,
                      const std::string& environment) {
    return RunKyr(arguments + TPluginRoot(fixtures).Option(), environment);
}

void TerminalTest::SetUp() {
    if (RunOnTerminal("", "true").status != 0) GTEST_SKIP() << "needs a pseudo-terminal, which cannot be had here";
}

TRunResult TerminalTest::RunOnTerminal(const std::string& environment, const std::string& command) {
    return RunShell("PAGER=cat env " + environment + " script -qec '" + command + "' /dev/null </dev/null");
}

std::string WithoutMarks(std::string document) {
    for (size_t mark = 0; (mark = document.find("<!--")) != std::string::npos;)
        document.erase(mark, document.find("-->", mark) + 3 - mark);
    return document;
}

void ReplaceIn(std::string& content, const std::string& text, const std::string& other) {
    EXPECT_NE(content.find(text), std::string::npos) << text;
    for (size_t at = 0; (at = content.find(text, at)) != std::string::npos; at += other.size())
        content.replace(at, text.size(), other);
}

size_t CountIn(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

bool HasLineOver(size_t length, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (line.size() > length) return true;
    return false;
}
