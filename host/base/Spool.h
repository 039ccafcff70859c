#ifndef KYR_HOST_BASE_SPOOL_H
#define KYR_HOST_BASE_SPOOL_H

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

/// A temporary file without a name, for what has to wait and may be large. What fails raises TCommandError with
/// eExitOutput.
class TSpool {
public:
    TSpool();

    void Write(std::string_view bytes);
    size_t Size() const { return fSize; }
    /// Forgets what stands behind that.
    void Truncate(size_t size);
    /// Reading begins anew. Nothing may be written until all is read or truncated.
    void Rewind();
    /// Up to that many bytes of what was not read yet; fewer at the end.
    std::string Read(size_t size);
    /// By which the file can be opened once more, after Rewind, as long as this exists.
    std::string Path() const;

private:
    [[noreturn]] static void Fail(const char* attempt);

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> fFile;
    size_t fSize = 0;
};

#endif
