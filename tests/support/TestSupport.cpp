#include "support/TestSupport.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "kyr/TLogger.h"
#include "kyr/TRootObject.h"

LogCapture::LogCapture() {
    delete TRootObject::GetCoreLogger();
    TLogger::Initialize();
    Logger().SetLogThreshold(kyrLogDebug);
}

LogCapture::~LogCapture() { Logger().ClearLog(); }

ILogger& LogCapture::Logger() const { return *TRootObject::GetCoreLogger(); }

TLines LogCapture::TakeLines() {
    TLines lines;
    for (const ILogger::TLogEntry& entry : Logger().GetLog())
        lines.push_back(std::to_string(entry.severity) + ":" + entry.text);
    Logger().ClearLog();
    return lines;
}

TempFolder::TempFolder() {
    char name[] = "/tmp/kyr-test-XXXXXX";
    if (mkdtemp(name) == nullptr) ADD_FAILURE() << "cannot make a folder below /tmp";
    fPath = name;
    // mkdtemp's random letters could spell it, and a plugin's document would not be found below.
    if (fPath.find("lib") != std::string::npos) {
        std::filesystem::remove(fPath);
        fPath += "-";
        fPath.replace(fPath.find("lib"), 3, "bil");
        std::filesystem::create_directory(fPath);
    }
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(fPath, ignored);
}

std::string TempFolder::Write(const std::string& name, const std::string& content) const {
    // An absolute name would lead out of the folder, to a file of the machine that runs the test.
    const std::filesystem::path path = fPath / std::filesystem::path(name).relative_path();
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path.string();
}

std::string Joined(const TLines& parts, const std::string& separator) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : separator) + part;
    return text;
}

TLines Split(const std::string& text, char separator) {
    std::istringstream stream(text);
    TLines parts;
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

std::string ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << path;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}
