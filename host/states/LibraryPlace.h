#ifndef KYR_HOST_STATES_LIBRARYPLACE_H
#define KYR_HOST_STATES_LIBRARYPLACE_H

#include <string>

#include "model/Reason.h"

// What the files of a plugin are called and where they belong: for the plugin "disk" the library disk/libdisk.pi.so and
// the document disk/disk.properties.xml in a plugin folder.

/// Whether the file is loaded as a library: ".pi.so" stands anywhere in its name.
bool IsLibraryName(const std::string& file);
/// "disk", for "libdisk.pi.so", and for "disk.pi.so" and "libdisk.so", which somebody may have named so by mistake.
std::string PluginNameOf(const std::string& library);
std::string LibraryOfPlugin(const std::string& name);
std::string DocumentOfPlugin(const std::string& name);

/// Why a host does not find a library, or the core not its document.
enum class EMisplacement { eOtherEnding, eNoLib, eLibInFolder, eInPluginFolder, eTooDeep };

/// The path at which the library would be found: in its folder under the right name, or in its place in a plugin
/// folder.
std::string RightName(const std::string& library);
std::string RightPath(const std::string& library, const std::string& pluginFolder);

/// That it is so, and which path is right.
TReason Misplaced(EMisplacement misplacement, const std::string& right);

#endif
