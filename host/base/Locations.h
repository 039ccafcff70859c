#ifndef KYR_HOST_BASE_LOCATIONS_H
#define KYR_HOST_BASE_LOCATIONS_H

#include <string>

/// Where the plugins and the base document stand beside this executable, in the build tree or as installed; empty if
/// they do not.
std::string FindDefaultPlugins();
std::string FindDefaultSchema();
/// The document that stands beside the base document, and says how a collection tells how complete it is. Raises
/// TCommandError.
std::string FindStateDocument();

#endif
