#ifndef KYR_HOST_SAVED_SAVEDCOLLECTION_H
#define KYR_HOST_SAVED_SAVEDCOLLECTION_H

#include <string>
#include <vector>

class TCIMClass;
class TContainer;

/// To be asked before anything is collected: raises what SaveCollection would for the path.
void RequireSavablePath(const std::string& path);

/// Writes the container as a CIM-XML document, with all instances or those of the classes alone, compressed if the path
/// ends in ".gz": the file appears whole or not at all, unless the path names something other than a regular file. With
/// stable, values that change by themselves are left out. What the format cannot carry is refused by class and
/// property. Raises TCommandError with eExitOutput, or eExitUsage for a path that could not be read back.
void SaveCollection(const TContainer& container, const std::string& path, bool stable,
                    const std::vector<TCIMClass*>* classes = nullptr);

/// Fills an empty container. Raises TCommandError with eExitNothing.
void ReadCollection(const std::string& path, TContainer& container);

#endif
