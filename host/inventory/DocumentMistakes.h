#ifndef KYR_HOST_INVENTORY_DOCUMENTMISTAKES_H
#define KYR_HOST_INVENTORY_DOCUMENTMISTAKES_H

#include <list>
#include <string>

#include "states/PluginLibrary.h"

/// For each library that was loaded, and whose document the core refused or took no class from: looks in the document
/// for the mistake, which the core does not name.
void FindDocumentMistakes(std::list<TPluginLibrary>& libraries, const std::string& schema);

#endif
