#ifndef KYR_HOST_INVENTORY_LIBRARYSEARCH_H
#define KYR_HOST_INVENTORY_LIBRARYSEARCH_H

#include <list>
#include <string>
#include <vector>

#include "base/PluginFolders.h"
#include "states/PluginLibrary.h"

/// The plugin libraries in the folders of plugin folders. Of libraries with one name in several plugin folders, the one
/// in the first folder is taken, which is told. They are in the order of the folders, and of their paths, so that of
/// two documents that declare a class, the same one is read first in every run.
///
/// What cannot be loaded is listed with the reason: folders that cannot be read, documents that lack their library, and
/// libraries in places or with names where the core does not find them or their documents. Raises TCommandError if a
/// folder that is required cannot be read.
std::list<TPluginLibrary> FindLibraries(const std::vector<TPluginFolder>& folders);

/// Tells on standard error, if this is the superuser's process, where others can put code into it. That goes without
/// saying for the executable's own plugin folder, as for the executable.
void TellWritableFolders(const std::list<TPluginLibrary>& libraries);

#endif
