#include "base/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "base/ExitStatus.h"
#include "base/Text.h"

namespace fs = std::filesystem;

namespace {

constexpr unsigned int kBufferSize = 1 << 16;

}  // namespace

bool TOutputFile::IsSpecial(const std::string& path) {
    if (path == kStandardOutput) return true;
    // These name descriptors of this process. Even if one is a regular file, the caller wants it written, not replaced.
    for (const char* descriptors : {"/dev/std", "/dev/fd/", "/proc/self/fd/"})
        if (StartsWith(path, descriptors)) return true;
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

TOutputFile::TOutputFile(const std::string& path, bool compressed) : TOutputFile(path) {
    fInPlace = IsSpecial(path);
    if (fInPlace) {
        fFile = path == kStandardOutput ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (fFile < 0) Fail();
    } else {
        OpenTemporary();
    }
    const int copy = fcntl(fFile, F_DUPFD_CLOEXEC, 0);
    if (copy >= 0) fStream = gzdopen(copy, compressed ? "wb" : "wbT");
    if (fStream == nullptr) Fail();
    gzbuffer(fStream, kBufferSize);
}

TOutputFile::~TOutputFile() {
    if (fStream != nullptr) gzclose(fStream);
    if (fFile >= 0) close(fFile);
    if (!fTemporary.empty()) unlink(fTemporary.c_str());
}

void TOutputFile::Write(std::string_view bytes) {
    if (bytes.empty()) return;
    if (gzwrite(fStream, bytes.data(), static_cast<unsigned int>(bytes.size())) <= 0) Fail();
}

void TOutputFile::Finish() {
    const bool isWritten = gzclose(fStream) == Z_OK;
    fStream = nullptr;
    if (!isWritten) Fail();
    if (!fInPlace) Publish();
}

// A file without a name (O_TMPFILE), which vanishes even if this process is killed. Where the file system does not
// support that, or /proc is missing, which is needed to name the file later, it has a temporary name from the start.
void TOutputFile::OpenTemporary() {
    std::error_code missing;
    const fs::path target = fs::canonical(fPath, missing);
    if (!missing) {
        fTarget = target.string();
        if (access(fTarget.c_str(), W_OK) != 0) Fail();
    }
    const std::string folder = fs::path(fTarget).parent_path().string();
    if (access("/proc/self/fd", X_OK) == 0) fFile = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    if (fFile < 0) {
        WithUnusedName([this](const char* name) {
            fFile = open(name, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
            return fFile >= 0;
        });
    }
    CopyOwnerAndMode();
}

// Gives the new file the owner and the permissions of the file that it replaces. Set-user-ID and the like are kept only
// together with the owner.
void TOutputFile::CopyOwnerAndMode() {
    struct stat status {};
    if (stat(fTarget.c_str(), &status) != 0) return;
    const bool isSameOwners = fchown(fFile, status.st_uid, status.st_gid) == 0;
    fchmod(fFile, status.st_mode & (isSameOwners ? 07777 : 0777));
}

void TOutputFile::Publish() {
    if (fsync(fFile) != 0) Fail();
    if (fTemporary.empty()) {
        const std::string descriptor = "/proc/self/fd/" + std::to_string(fFile);
        WithUnusedName([&](const char* name) {
            return linkat(AT_FDCWD, descriptor.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
        });
    }
    if (rename(fTemporary.c_str(), fTarget.c_str()) != 0) Fail();
    fTemporary.clear();
}

template <typename TAction>
void TOutputFile::WithUnusedName(TAction action) {
    const fs::path folder = fs::path(fTarget).parent_path();
    for (int number = 0; number < 1000; ++number) {
        const fs::path name = folder / (".kyr-" + std::to_string(getpid()) + "-" + std::to_string(number));
        if (action(name.c_str())) {
            fTemporary = name.string();
            return;
        }
        if (errno != EEXIST) break;
    }
    Fail("cannot make a file in its folder: ");
}

void TOutputFile::Fail(const std::string& attempt) const {
    if (errno == EPIPE) throw TCommandError(eExitOutput, "");  // the reader has seen enough
    const std::string name = fPath == kStandardOutput ? "standard output" : "'" + fPath + "'";
    throw TCommandError(eExitOutput, "cannot write " + name + ": " + attempt + std::strerror(errno));
}
