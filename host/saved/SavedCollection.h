#ifndef KYR_HOST_SAVED_SAVEDCOLLECTION_H
#define KYR_HOST_SAVED_SAVEDCOLLECTION_H

#include <string>
#include <vector>

#include "model/Reason.h"

class TCIMClass;
class TContainer;

/// Raises TCommandError if SaveCollection could not write to the path. Called before anything is collected, so that a
/// mistyped path does not cost a whole collection.
void RequireSavablePath(const std::string& path);

/// Writes the container as a CIM-XML document: the whole schema, and the instances of the given classes, or with null
/// all instances. The document is compressed if the path ends in ".gz" or is that of standard output. It is written
/// atomically, unless the path names something other than a regular file. With stable, volatile properties are left
/// out. Raises TCommandError with eExitOutput for what the format cannot hold, naming class and property, and with
/// eExitUsage for a path from which the file could not be read back.
void SaveCollection(const TContainer& container, const std::string& path, bool stable,
                    const std::vector<TCIMClass*>* classes = nullptr);

/// Reads a saved collection into an empty container. A document that is not plainly harmless is tried in a child
/// process first, so that one that crashes the reader is refused. Returns eFileChanged with what is missing if the file
/// is not as it was saved, which is hardly known of files without an end mark: those of earlier versions and of other
/// programs. The path may stand for a stream, see TStreamedFile; whether a file is compressed is told by its content.
/// Raises TCommandError with eExitNothing.
TReason ReadCollection(const std::string& path, TContainer& container);
/// The same, and the states tell what was lost since it was saved: instances that are missing, and how the file is not
/// as it was.
TReason ReadCollectionWithStates(const std::string& path, TContainer& container);

#endif
