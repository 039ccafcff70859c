/*
 * refusing ERRNO CALL... -- COMMAND [ARGUMENT]...
 *
 * Runs a command to which these system calls fail with that number, as in a container whose filter does not know them.
 */
#include <seccomp.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

int main(int argc, char** argv) {
    const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
    int i;
    seccomp_attr_set(filter, SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ALLOW);
    for (i = 2; i < argc - 1 && strcmp(argv[i], "--") != 0; ++i) {
        const int call = seccomp_syscall_resolve_name(argv[i]);
        if (seccomp_rule_add(filter, SCMP_ACT_ERRNO((uint16_t)atoi(argv[1])), call, 0) != 0) return 125;
    }
    if (seccomp_load(filter) != 0) return 125;
    execvp(argv[i + 1], argv + i + 1);
    perror(argv[i + 1]);
    return 127;
}
