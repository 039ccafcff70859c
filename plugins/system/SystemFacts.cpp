#include "SystemFacts.h"

TSystemFacts ReadSystem(const TSystemRoot& root) {
    TSystemFacts facts;
    facts.isRunning = root.IsRunningMachine();
    ReadDmi(root, facts);
    ReadHypervisor(root, facts);
    ReadContainer(root, facts);
    ReadMachineId(root, facts);
    ReadBootFirmware(root, facts);
    ReadOsRelease(root, facts);
    ReadKernel(root, facts);
    return facts;
}
