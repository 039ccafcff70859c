#ifndef TOSSPECIFIC_H
#define TOSSPECIFIC_H

#include <string>
#include <vector>

#include "kyr/TCIMDateTime.h"
#include "kyr/kyrExport.h"

/// All that touches the operating system; static operations only. Unless told otherwise, a failure is not logged.
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

    /// In bytes; a symbolic link is followed. kyrStatusFileNotFound, for a directory too.
    static long long GetFileSize(std::string path);
    /// One level, with mode 0777 less the umask. kyrStatusDirectoryAlreadyExists, kyrStatusAccessDenied (a read-only
    /// file system too), kyrStatusFileSystemError.
    static void CreateDir(std::string path);
    /// True for a directory, or a symbolic link to one.
    static bool DirExists(std::string path);
    /// True for anything that exists and is no directory.
    static bool FileExists(std::string path);
    /// The bare names, unsorted, without "." and "..". kyrStatusFileSystemError. Each call costs one descriptor, which
    /// stays open until the process ends: hosts that list often use a call of their own.
    static std::vector<std::string> ListDir(std::string path);
    /// To a new file with the source's mode. kyrStatusFileSystemError, also if the target exists; after a failure to
    /// write, the target is left behind. The source must exist: otherwise descriptor 0 is read, and closed. Test it
    /// with FileExists first; see docs/oddities.md.
    static void FileCopy(std::string source, std::string target);
    /// Always kyrStatusFail, which hosts in the field rely on.
    static std::string GetCurrentDir();

    // Identity.

    /// The host name; kyrStatusFail if it has 64 characters or more.
    static std::string GetMachineName();
    /// The host name once more, and not what the name says.
    static std::string GetOperatingSystemName();
    /// True for the superuser, by the real user id.
    static bool IsAdmin();

    // Console.

    /// Milliseconds, although usleep takes microseconds.
    static void USleep(unsigned int milliseconds);
    /// True if a key waits on standard input, or if that cannot be told.
    static bool IsKeyWaiting();
    /// Waits for one key on standard input, without echo; -1 at the end of input. Signals from the keyboard, Ctrl-C
    /// among them, arrive as keys meanwhile.
    static int GetKeyboardChar();

    // Plugins.

    /// The plugin libraries one directory below root, unsorted. A directory's bare name is tested against the current
    /// directory: root must be the current directory. kyrStatusFileSystemError. Costs a descriptor a directory.
    static std::vector<std::string> FindPlugins(std::string root);
    /// Opens a library for good, with its symbols in the global scope, and returns its handle. Its load-time
    /// constructors run meanwhile. kyrStatusFileSystemError, with "ERROR: Failed to load plugin.  Reason: " in the log.
    static void* LoadPluginLibrary(std::string path);
    /// The document's path for a library's: see IPlugin::GetSpecificationPath. kyrStatusFail.
    static std::string BuildSpecificationPath(std::string libraryPath);

    // Processes.

    /// Runs a program, searched in PATH, without standard input, and returns what it wrote to standard output and
    /// standard error. Waits until it has ended, without a limit of time or of output. The exit code is lost here.
    static std::string SpawnProcess(std::string path);
    /// The arguments start with the first one; the program's name is put before them. No shell reads them.
    static std::string SpawnProcess(std::string path, std::vector<std::string> arguments);
    /// Returns the exit code; a program that cannot be started has exit code 1. kyrStatusFail if a signal ended it,
    /// with a line "ERROR: SpawnProcess - ..." in the log; output has what it wrote until then.
    static int SpawnProcess(std::string path, std::vector<std::string> arguments, std::string& output);
    /// All that can be read from an open descriptor, which stays open. kyrStatusFileSystemError, with a line in the
    /// log; what was read before is lost.
    static std::string GetFileContents(int descriptor);
    /// The content of a file, zero bytes included. kyrStatusFileNotFound if it cannot be opened, for whatever reason,
    /// kyrStatusFileSystemError if it cannot be read; both have a line in the log. Each call costs one descriptor,
    /// which stays open until the process ends.
    static std::string CaptureFile(std::string path);

    // Upload.

    /// Sends a file to the upload server by anonymous FTP, as name with ".xml.gz" behind it; true. The content goes as
    /// it is: compressing it is the caller's. libcurl.so is opened at that moment, and nothing else needs it. Waits for
    /// the end of the transfer. kyrStatusConnectionFailed, kyrStatusLibCurlFailure (also for a transfer that breaks
    /// off) and kyrStatusFileSystemError have a line "TOSSpecific|FTPFile: Error ..." in the log; a libcurl that lacks
    /// an entry raises std::logic_error instead.
    static bool FTPFile(std::string localPath, std::string name);
};

#endif
