#ifndef CIMXMLSCHEMA_H
#define CIMXMLSCHEMA_H

class TCimXmlWriter;
class TContainer;

/// Writes all qualifier declarations, then all classes, each behind what it needs. Raises TCommandError with
/// eExitOutput for what would not read back as it is.
void WriteSchema(const TContainer& container, TCimXmlWriter& writer);

#endif
