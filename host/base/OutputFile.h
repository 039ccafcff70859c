#ifndef KYR_HOST_BASE_OUTPUTFILE_H
#define KYR_HOST_BASE_OUTPUTFILE_H

#include <zlib.h>

#include <string>
#include <string_view>

/// A file that is written atomically: Finish() replaces what was at the path, and until then that stays as it was. What
/// is no regular file, such as a device or a pipe, is written in place. Every failure is a TCommandError with
/// eExitOutput.
class TOutputFile {
public:
    TOutputFile(const std::string& path, bool compressed);
    /// Removes the temporary file if Finish() was not called.
    ~TOutputFile();
    TOutputFile(const TOutputFile&) = delete;
    TOutputFile& operator=(const TOutputFile&) = delete;

    static constexpr const char* kStandardOutput = "-";
    /// Whether the path names something that is written in place, as standard output is.
    static bool IsSpecial(const std::string& path);

    void Write(std::string_view bytes);
    /// Writes what is still buffered to the disk and gives the file its name. Nothing can be written afterwards.
    void Finish();

private:
    explicit TOutputFile(const std::string& path) : fPath(path), fTarget(path) {}

    void OpenTemporary();
    void CopyOwnerAndMode();
    void Publish();
    // Calls the action with names that are not used in the target's folder until it succeeds with one.
    template <typename TAction>
    void WithUnusedName(TAction action);
    [[noreturn]] void Fail(const std::string& attempt = "") const;

    const std::string fPath;
    std::string fTarget;     // fPath with symbolic links resolved
    std::string fTemporary;  // the name of the unfinished file; empty: it has none
    bool fInPlace = false;
    int fFile = -1;
    gzFile fStream = nullptr;
};

#endif
