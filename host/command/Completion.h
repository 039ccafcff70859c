#ifndef KYR_HOST_COMMAND_COMPLETION_H
#define KYR_HOST_COMMAND_COMPLETION_H

#include <string>
#include <vector>

#include "command/Command.h"

/// Writes what the last of the words behind "kyr" may become, for the completion of a shell: a line for each, with what
/// it is behind a tab. The line ":files" or ":folders" leaves the rest to the shell. A word that ends with a dot goes
/// on behind it. Nothing is known of a line that kyr would refuse.
void WriteCompletions(const CLI::App& app, const TCommands& commands, std::vector<std::string> words, TOutput& output);

#endif
