#ifndef TESTSUPPORT_H
#define TESTSUPPORT_H

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "kyr/ILogger.h"
#include "kyr/TKYRException.h"

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using TLines = std::vector<std::string>;

/// Runs an expression and gives the status that it raised, kyrStatusOK for none, so that a table can hold it.
template <typename TAction>
kyrStatusCode StatusOf(TAction&& action) {
    try {
        action();
    } catch (const TKYRException& e) {
        return e.fCode;
    }
    return kyrStatusOK;
}

/// How two objects compare: "<", "==" or ">"; more than one of them, or none, where the operators do not agree.
template <typename T>
std::string Order(const T& a, const T& b) {
    return std::string(a < b ? "<" : "") + (a == b ? "==" : "") + (b < a ? ">" : "");
}

/// A fresh logger for the length of a test, with everything down to kyrLogDebug kept in memory.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    ILogger& Logger() const;
    /// What was logged since the last call as lines "severity:text", oldest first; the log is empty afterwards.
    TLines TakeLines();
};

/// The fixture of most tests: a log of its own.
class LoggedTest : public ::testing::Test {
protected:
    /// What an action comes to in one text: the name of the status that it raised, if any, and the lines that it
    /// logged.
    template <typename TAction>
    std::string Outcome(TAction&& action) {
        fLog.TakeLines();
        const kyrStatusCode status = StatusOf(action);
        std::string outcome = status == kyrStatusOK ? "" : kyrTranslateStatusCode(status);
        for (const std::string& line : fLog.TakeLines()) outcome += " " + line;
        return outcome;
    }

    LogCapture fLog;
};

/// A folder of its own, gone with everything in it when the object goes. Its path never holds "lib".
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return fPath; }
    /// Writes a file below the folder, making the folders on its way, and returns its path.
    std::string Write(const std::string& name, const std::string& content) const;

private:
    std::string fPath;
};

std::string Joined(const TLines& parts, const std::string& separator);
TLines Split(const std::string& text, char separator);

/// The whole content of a file; fails the test if it cannot be read.
std::string ReadFile(const std::string& path);

#endif
