#ifndef LIBRARIES_H
#define LIBRARIES_H

#include <list>
#include <string>

#include "inventory/Library.h"

class TContainer;
struct TSessionOptions;

/// The plugin libraries one folder below the current one, in the order of their names: where two plugins declare a
/// class, it is the same one each time that brings it. A folder that cannot be read stands for its libraries. Raises
/// TCommandError.
std::list<TLibrary> FindLibraries();

/// Reads the libraries' documents into both containers, and writes in each library which classes it brought, or why
/// it must not be loaded. A document that would crash the reader, or keep it for too long, is not read.
void ReadDocuments(std::list<TLibrary>& libraries, TContainer& container, TContainer& schema,
                   const TSessionOptions& options);

/// Gives the library those classes of its document that another one brought and then failed to load.
void ClaimClasses(TLibrary& library, std::list<TLibrary>& libraries);

/// The document of a library, or nothing where its path names none.
std::string DocumentOf(const TLibrary& library);

#endif
