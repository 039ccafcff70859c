#ifndef KYR_HOST_BASE_OUTPUTFILE_H
#define KYR_HOST_BASE_OUTPUTFILE_H

#include <zlib.h>

#include <string>
#include <string_view>

/// A file that appears whole, when it is finished, or not at all, in place of one that may be there. What is no
/// regular file, such as a device or a pipe, is written in place. Every failure is a TCommandError with eExitOutput.
class TOutputFile {
public:
    TOutputFile(const std::string& path, bool compressed);
    /// Leaves nothing behind of a file that was not finished.
    ~TOutputFile();
    TOutputFile(const TOutputFile&) = delete;
    TOutputFile& operator=(const TOutputFile&) = delete;

    /// Whether there is something at the path that is written in place.
    static bool IsSpecial(const std::string& path);

    void Write(std::string_view bytes);
    void Finish();

private:
    explicit TOutputFile(const std::string& path) : fPath(path), fTarget(path) {}

    void OpenTemporary();
    void TakeOverMode();
    void Publish();
    template <typename TAction>
    void UnderNewName(TAction action);
    [[noreturn]] void Fail(const std::string& attempt = "") const;

    const std::string fPath;
    std::string fTarget;     // the same without symbolic links
    std::string fTemporary;  // the file's name until it is finished; empty: it has none yet
    bool fInPlace = false;
    int fFile = -1;
    gzFile fStream = nullptr;
};

#endif
