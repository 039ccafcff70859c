#ifndef KYRRUN_H
#define KYRRUN_H

#include <initializer_list>
#include <ostream>
#include <string>

#include "support/TestSupport.h"

using testing::_;
using testing::ContainsRegex;
using testing::FieldsAre;

/// What a run of kyr left; FieldsAre(status, out, err) matches it.
struct TRunResult {
    int status;  ///< exit status; -1: it ended otherwise
    std::string out;
    std::string err;
};
void PrintTo(const TRunResult& run, std::ostream* stream);

/// Runs a shell command.
TRunResult RunShell(const std::string& command);

/// Runs kyr by the shell, which takes redirections among the arguments, and words such as "NAME=value" in front.
TRunResult RunKyr(const std::string& arguments, const std::string& environment = "");

/// The same on one of the machines of the system plugin's fixtures, in UTC.
TRunResult RunKyrOn(const std::string& machine, const std::string& arguments);

/// A plugin root with the system plugin and those of the fixture plugins that are named.
class TPluginRoot : public TempFolder {
public:
    explicit TPluginRoot(std::initializer_list<const char*> fixtures);

    /// The option that makes kyr use it.
    std::string Option() const { return " --plugins " + Path() + " "; }
};

/// Copies the library of a fixture plugin, making the folders on the way.
void CopyLibrary(const std::string& fixture, const std::string& target);

/// A run with such a root of its own.
TRunResult RunKyrWith(std::initializer_list<const char*> fixtures, const std::string& arguments,
                      const std::string& environment = "");

/// Tests of what kyr does on a terminal; skipped where there are no pseudo-terminals.
class TerminalTest : public testing::Test {
protected:
    void SetUp() override;
    /// Standard output holds both. There is no pager unless the environment has one.
    static TRunResult RunOnTerminal(const std::string& environment, const std::string& command);
};

/// A saved document without the marks that would tell that it has been edited.
std::string WithoutMarks(std::string document);
/// The text is replaced wherever it stands; fails the test if it stands nowhere.
void ReplaceIn(std::string& content, const std::string& text, const std::string& other);

/// Whether a line has more bytes than that.
bool HasLineOver(size_t length, const std::string& text);

/// How many times a text stands in another.
size_t CountIn(const std::string& text, const std::string& part);

#endif
