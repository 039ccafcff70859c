#ifndef CIMXMLINSTANCES_H
#define CIMXMLINSTANCES_H

class TCimXmlWriter;
class TContainer;

/// Writes all instances with those values that are their own. With stable, values that change by themselves are left
/// out unless they are keys. Raises TCommandError with eExitOutput for what would not read back as it is.
void WriteInstances(const TContainer& container, bool stable, TCimXmlWriter& writer);

#endif
