#ifndef KYR_HOST_INVENTORY_LIBRARIES_H
#define KYR_HOST_INVENTORY_LIBRARIES_H

#include <list>
#include <string>

#include "states/PluginLibrary.h"

class TContainer;
struct TRunLimits;
class TPluginContainer;

/// Reads the libraries' documents into the container, that of the computer system into the schema too, and stores in
/// each library which classes its document declares, or why the library must not be loaded. Those of the plugins that
/// come with the executable are read first, then those in its plugin folder, so that they have the classes that others
/// declare too. Documents that are not
/// plainly harmless are tried in a child process first; one that crashes the reader there, or takes too long, is not
/// read.
void ReadDocuments(std::list<TPluginLibrary>& libraries, TPluginContainer& container, TContainer& schema,
                   const TRunLimits& limits);

/// Stores in each library, and tells, which classes of its document go to another library or are of the base document.
/// To be called when all libraries are loaded.
void TellTakenClasses(std::list<TPluginLibrary>& libraries, const TContainer& container);

/// Moves classes to the library that its document declares too, if the library that owned them failed to load.
void ClaimClasses(TPluginLibrary& library, std::list<TPluginLibrary>& libraries);

#endif
