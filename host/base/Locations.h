#ifndef KYR_HOST_BASE_LOCATIONS_H
#define KYR_HOST_BASE_LOCATIONS_H

#include <string>

/// The plugin folder and the base document that belong to this executable, in the build tree or as installed; empty if
/// there are none.
std::string FindDefaultPlugins();
std::string FindDefaultSchema();
/// The document with the classes of collection states, schema/collection.xml. Raises TCommandError if it is missing.
std::string FindStateDocument();
/// The folder with the templates of new plugins. Raises TCommandError if it is missing.
std::string FindTemplates();

#endif
