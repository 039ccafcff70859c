#ifndef KYR_HOST_RENDER_DEPENDENCYTEXT_H
#define KYR_HOST_RENDER_DEPENDENCYTEXT_H

class TCIMInstance;
class TContainer;
class TOutput;

/// Prints all that the instance belongs to or depends on, step by step as associations lead there, and all that belongs
/// to it or depends on it: of a mount, the disk below it; of a disk, the mounts that stand on it. What several lead to
/// is told in full below the first one, and below the others a line refers to it. The system, to which everything
/// belongs, is left out.
void PrintDependencies(const TContainer& container, const TCIMInstance& instance, TOutput& output);

#endif
