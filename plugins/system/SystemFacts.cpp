#include "SystemFacts.h"

TSystemFacts ReadSystem(const TSystemRoot& root) {
    TSystemFacts facts;
    facts.isRunning = root.IsRunningMachine();
    ReadDmi(root, facts);
    ReadComputerIds(root, facts);
    ReadHypervisor(root, facts);
    ReadDeviceTree(root, facts);
    ReadSysinfo(root, facts);
    ReadContainer(root, facts);
    ReadContainerLimits(root, facts);
    ReadMachineId(root, facts);
    ReadBootFirmware(root, facts);
    ReadOsRelease(root, facts);
    ReadInstallation(root, facts);
    ReadKernel(root, facts);
    ReadKernelCommandLine(root, facts);
    ReadHostNames(root, facts);
    ReadSecurity(root, facts);
    ReadTpms(root, facts);
    return facts;
}
