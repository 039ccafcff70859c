#ifndef KYR_HOST_ISOLATION_CHILDSETTING_H
#define KYR_HOST_ISOLATION_CHILDSETTING_H

#include <sys/types.h>

/// Makes a process that was just forked fit for a plugin: a session of its own, whose group it cannot leave, no
/// terminal, no standard streams of ours (what it prints goes to the descriptor), default signals, and an end to its
/// memory. Other descriptors of ours are closed if it is told so. It ends with its parent.
void PrepareChild(pid_t parent, int printed, bool closesOthers);

#endif
