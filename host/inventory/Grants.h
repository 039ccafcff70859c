#ifndef KYR_HOST_INVENTORY_GRANTS_H
#define KYR_HOST_INVENTORY_GRANTS_H

#include <list>
#include <string>
#include <vector>

struct TPluginLibrary;

/// Notes in the libraries what their plugins are granted. Each grant is "PLUGIN:NEED" with a need that there is. The
/// plugins that belong to this executable may look into other processes without one, unless somebody else could have
/// put them in its folder. Raises
/// TCommandError for a plugin that there is not, or of whose name there are two, and for a need that it has not.
void ApplyGrants(const std::vector<std::string>& grants, std::list<TPluginLibrary>& libraries);

#endif
