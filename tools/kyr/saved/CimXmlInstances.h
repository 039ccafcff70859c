#ifndef CIMXMLINSTANCES_H
#define CIMXMLINSTANCES_H

#include <vector>

class TCIMClass;
class TCimXmlWriter;

/// Writes all instances of exactly those classes with those values that are their own. With stable, values that change
/// by themselves are left out unless they are keys. Raises TCommandError with eExitOutput for what would not read back
/// as it is.
void WriteInstances(const std::vector<TCIMClass*>& classes, bool stable, TCimXmlWriter& writer);

#endif
