#ifndef KYR_HOST_INVENTORY_LIBRARIES_H
#define KYR_HOST_INVENTORY_LIBRARIES_H

#include <list>
#include <string>

#include "states/PluginLibrary.h"

class TContainer;
struct TRunLimits;
class TPluginContainer;

/// The plugin libraries one folder below the current one, in the order of their names: where two plugins declare a
/// class, it is the same one each time that brings it. A folder that cannot be read stands for its libraries. Raises
/// TCommandError.
std::list<TPluginLibrary> FindLibraries();

/// Reads the libraries' documents into both containers, and writes in each library which classes it brought, or why
/// it must not be loaded. A document that would crash the reader, or keep it for too long, is not read.
void ReadDocuments(std::list<TPluginLibrary>& libraries, TPluginContainer& container, TContainer& schema,
                   const TRunLimits& limits);

/// Gives the library those classes of its document that another one brought and then failed to load.
void ClaimClasses(TPluginLibrary& library, std::list<TPluginLibrary>& libraries);

#endif
