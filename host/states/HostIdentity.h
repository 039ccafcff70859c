#ifndef KYR_HOST_STATES_HOSTIDENTITY_H
#define KYR_HOST_STATES_HOSTIDENTITY_H

#include <string>

class TCIMInstance;
class TContainer;

/// One of the texts by which a host is known.
struct THostText {
    const char* key;             ///< in JSON
    const char* property;        ///< of MOLTA_Collection
    const char* systemProperty;  ///< of MOLTA_ComputerSystem, from which it is taken
};

constexpr THostText kHostTexts[] = {{"name", "HostName", "Name"},
                                    {"machineId", "MachineID", "MachineID"},
                                    {"uuid", "UUID", "UUID"},
                                    {"serialNumber", "SerialNumber", "SerialNumber"}};

/// The class of which an instance tells those texts. One is collected even if others are wanted, and then removed.
constexpr const char* kHostClass = "MOLTA_ComputerSystem";

/// Which host the collection is of: from its state or, as in files of kyr 1.0, from the computer system. Empty if
/// neither tells.
std::string HostTextOf(const TContainer& container, const THostText& text);
/// Sets the properties of the state from the computer system, if there is one.
void StoreHost(TCIMInstance& collection);

#endif
