#ifndef KYR_HOST_RENDER_SUMMARYSYSTEM_H
#define KYR_HOST_RENDER_SUMMARYSYSTEM_H

#include <string>
#include <vector>

class TCIMInstance;
class TContainer;

constexpr const char* kTpmClass = "MOLTA_TPM";
constexpr const char* kVirtualMachineClass = "MOLTA_VirtualMachine";
constexpr const char* kHostedContainerClass = "MOLTA_HostedContainer";

/// What protects the machine, such as "Secure Boot enabled, TPM 2.0, SELinux enforcing", by its instance of
/// MOLTA_SystemSecurity and what stands beside it.
std::string SecurityText(const TCIMInstance& security);

/// How many virtual machines and containers the machine hosts, and how many of them run, in one line; none if it hosts
/// none.
std::vector<std::string> GuestsTexts(const TContainer& container);

#endif
