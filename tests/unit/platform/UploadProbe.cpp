// Uploads one file, and prints the outcome and the log: upload_probe <host> <file> <name>. A program of its own, since
// each case of the test wants another environment and leaves things open.

#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

static std::string gHost;
#define KYRCORE_UPLOAD_HOST gHost
#include "platform/TOSSpecificUpload.cpp"

#include "kyr/ILogger.h"
#include "kyr/TLogger.h"
#include "kyr/TRootObject.h"

int main(int, char** arguments) {
    gHost = arguments[1];
    TLogger::Initialize();
    try {
        printf("%s\n", TOSSpecific::FTPFile(arguments[2], arguments[3]) ? "true" : "false");
    } catch (const TKYRException& e) {
        printf("%s\n", e.what());
    } catch (const std::logic_error&) {
        printf("std::logic_error\n");
    }
    for (const ILogger::TLogEntry& entry : TRootObject::GetCoreLogger()->GetLog())
        printf("%d:%s\n", entry.severity, entry.text.c_str());
    fflush(stdout);
    _exit(0);
}
