#ifndef LIBRARY_H
#define LIBRARY_H

#include <string>
#include <vector>

#include "states/PluginReport.h"

class TCIMClass;

/// A plugin library in the plugin folder, its document, and what became of it.
struct TLibrary {
    std::string path;                   ///< below the plugin folder, such as "./disk/libdisk.pi.so"
    std::vector<TCIMClass*> classes;    ///< those that its document brought
    std::vector<std::string> repeated;  ///< those in it that another document had brought
    TVerdict hindrance;                 ///< why it is not to be loaded, if it is not
    TPluginReport report;
};

#endif
