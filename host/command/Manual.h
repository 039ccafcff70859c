#ifndef KYR_HOST_COMMAND_MANUAL_H
#define KYR_HOST_COMMAND_MANUAL_H

#include <string>

namespace CLI {
class App;
}  // namespace CLI

/// Writes the pages of the manual's section 1 into a folder, which must be there: kyr.1 and kyr-COMMAND.1, in mdoc(7).
/// What they say is what the help says. The date stands at the end of each page.
void WriteManual(const CLI::App& app, const std::string& folder, const std::string& date);

#endif
