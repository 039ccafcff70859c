#ifndef KYR_HOST_MODEL_NEEDS_H
#define KYR_HOST_MODEL_NEEDS_H

#include <string>
#include <vector>

class TCIMClass;

/// What a plugin may be granted beyond reading files: the words that the qualifier NEEDS has on its classes.
enum ENeed : unsigned {
    eNeedsExec = 1,      ///< "exec": to start programs
    eNeedsNetwork = 2,   ///< "network": to speak to other machines and to daemons
    eNeedsRawIo = 4,     ///< "rawio": to send commands to devices
    eNeedsProcesses = 8  ///< "processes": to look into other processes
};

/// Some of ENeed together.
using TNeeds = unsigned;

/// The words for all of ENeed.
std::vector<std::string> NeedWords();
const char* WordFor(ENeed need);
/// 0 for a word that is none of them.
TNeeds NeedFor(const std::string& word);
/// The words that the qualifier NEEDS has on the class, known or not.
std::vector<std::string> NeedsOf(const TCIMClass& cls);

#endif
