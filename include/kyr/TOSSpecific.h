#ifndef TOSSPECIFIC_H
#define TOSSPECIFIC_H

#include <string>
#include <vector>

#include "kyr/TCIMDateTime.h"
#include "kyr/kyrExport.h"

/// All that touches the operating system; static operations only.
class KYR_API TOSSpecific {
public:
    static const std::string kPluginExtension;         ///< ".pi.so"
    static const std::string kSpecificationExtension;  ///< ".properties.xml"
    static const std::string kFileSeparator;           ///< "/"

    // Clock and log output.

    /// The present time, to the millisecond, with the offset of the local zone. Cannot fail.
    static TCIMDateTime GetLocalTime();
    /// Where log lines go without a log file; does nothing on this platform.
    static void OutputLogString(const std::string& text);

    // Files and directories.

    /// In bytes. kyrStatusFileNotFound, for a directory too.
    static long long GetFileSize(std::string path);
    /// One level, with mode 0777 less the umask. kyrStatusDirectoryAlreadyExists, kyrStatusAccessDenied (a read-only
    /// file system too), kyrStatusFileSystemError.
    static void CreateDir(std::string path);
    static bool DirExists(std::string path);
    /// True for anything that exists and is no directory.
    static bool FileExists(std::string path);
    /// The bare names, unsorted, without "." and "..". kyrStatusFileSystemError. Each call costs one descriptor.
    static std::vector<std::string> ListDir(std::string path);
    /// To a new file with the source's mode. kyrStatusFileSystemError, also if the target exists. The source must
    /// exist: otherwise descriptor 0 is read, and closed.
    static void FileCopy(std::string source, std::string target);
    /// Always kyrStatusFail.
    static std::string GetCurrentDir();

    // Identity.

    /// The host name; kyrStatusFail if it has 64 characters or more.
    static std::string GetMachineName();
    /// The host name once more.
    static std::string GetOperatingSystemName();
    /// True for the superuser, by the real user id.
    static bool IsAdmin();

    // Console.

    static void USleep(unsigned int milliseconds);
    /// True if a key waits on standard input, or if that cannot be told.
    static bool IsKeyWaiting();
    /// Waits for one key on standard input, without echo; -1 at the end of input.
    static int GetKeyboardChar();

    // Plugins.

    /// The plugin libraries one directory below root, unsorted. A directory's bare name is tested against the current
    /// directory: root must be the current directory. kyrStatusFileSystemError. Costs a descriptor a directory.
    static std::vector<std::string> FindPlugins(std::string root);
    /// Opens a library for good, with its symbols in the global scope, and returns its handle.
    /// kyrStatusFileSystemError, with the reason in the log.
    static void* LoadPluginLibrary(std::string path);
    /// The document's path for a library's: see IPlugin::GetSpecificationPath. kyrStatusFail.
    static std::string BuildSpecificationPath(std::string libraryPath);

    // Processes.

    /// Runs a program, searched in PATH, without standard input, and returns what it wrote to standard output and
    /// standard error. Waits until it has ended.
    static std::string SpawnProcess(std::string path);
    static std::string SpawnProcess(std::string path, std::vector<std::string> arguments);
    /// Returns the exit code; a program that cannot be started has exit code 1. kyrStatusFail if a signal ended it.
    static int SpawnProcess(std::string path, std::vector<std::string> arguments, std::string& output);
    /// All that can be read from an open descriptor, which stays open. kyrStatusFileSystemError.
    static std::string GetFileContents(int descriptor);
    /// The content of a file. kyrStatusFileNotFound if it cannot be opened, kyrStatusFileSystemError if it cannot be
    /// read. Each call costs one descriptor.
    static std::string CaptureFile(std::string path);

    // Upload.

    /// Sends a file to the upload server by anonymous FTP, as name with ".xml.gz" behind it; true. libcurl.so is
    /// opened at that moment. kyrStatusConnectionFailed, kyrStatusLibCurlFailure, kyrStatusFileSystemError; a libcurl
    /// that lacks an entry raises std::logic_error.
    static bool FTPFile(std::string localPath, std::string name);
};

#endif
