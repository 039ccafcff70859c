#include "isolation/SystemCallFilter.h"

#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <linux/seccomp.h>
#include <cerrno>
#include <memory>
#include <type_traits>

#include "base/Descriptor.h"
#include "isolation/RefusedCalls.h"

namespace {

struct TRelease {
    void operator()(scmp_filter_ctx filter) const { seccomp_release(filter); }
};
using TFilter = std::unique_ptr<std::remove_pointer_t<scmp_filter_ctx>, TRelease>;

constexpr uint32_t kBinaryTree = 2;

bool IsLetPass(const TRefusedCall& call, TNeeds granted, int landlockVersion) {
    if (call.ifGranted != 0 && (call.ifGranted & granted) == 0) return true;
    return (call.unlessGranted & granted) != 0 || (call.unlessLandlock != 0 && landlockVersion >= call.unlessLandlock);
}

int Add(scmp_filter_ctx filter, const TRefusedCall& call) {
    return seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(static_cast<uint32_t>(call.error)), call.number,
                                  static_cast<unsigned>(call.when.size()), call.when.data());
}

// Calls of another architecture, such as those of 32-bit programs, are told to be missing.
int Fill(scmp_filter_ctx filter, TNeeds granted, int landlockVersion) {
    int error = seccomp_attr_set(filter, SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ERRNO(ENOSYS));
    if (error == 0) error = seccomp_attr_set(filter, SCMP_FLTATR_CTL_OPTIMIZE, kBinaryTree);
    for (const TRefusedCall& call : RefusedCalls())
        if (error == 0 && !IsLetPass(call, granted, landlockVersion)) error = Add(filter, call);
    return error;
}

int Read(int file, std::vector<sock_filter>& program) {
    const off_t size = lseek(file, 0, SEEK_END);
    if (size <= 0) return EIO;
    program.resize(static_cast<size_t>(size) / sizeof(sock_filter));
    return pread(file, program.data(), static_cast<size_t>(size), 0) == size ? 0 : EIO;
}

}  // namespace

TSystemCallFilter::TSystemCallFilter(TNeeds granted, int landlockVersion) : fError(Make(granted, landlockVersion)) {}

int TSystemCallFilter::Make(TNeeds granted, int landlockVersion) {
    const TFilter filter(seccomp_init(SCMP_ACT_ALLOW));
    if (!filter) return ENOMEM;
    if (const int error = Fill(filter.get(), granted, landlockVersion)) return -error;
    const TDescriptor file(memfd_create("kyr-filter", MFD_CLOEXEC));
    if (file.Number() < 0) return errno;
    if (const int error = seccomp_export_bpf(filter.get(), file.Number())) return -error;
    return Read(file.Number(), fProgram);
}

int TSystemCallFilter::Load() const {
    if (fError != 0) return fError;
    std::vector<sock_filter> program = fProgram;
    for (sock_filter& instruction : program)
        if (instruction.k == kOwnProcess) instruction.k = static_cast<uint32_t>(getpid());
    const sock_fprog prepared{static_cast<unsigned short>(program.size()), program.data()};
    return syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &prepared) == 0 ? 0 : errno;
}
