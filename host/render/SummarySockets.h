#ifndef KYR_HOST_RENDER_SUMMARYSOCKETS_H
#define KYR_HOST_RENDER_SUMMARYSOCKETS_H

#include <string>
#include <vector>

class TContainer;

constexpr const char* kListeningSocketClass = "MOLTA_ListeningSocket";

/// The ports at which programs wait, with the programs: a line for those that other systems can reach, and one for
/// those that only programs of the same system can. None if there are no such sockets.
std::vector<std::string> ListeningTexts(const TContainer& container);

#endif
