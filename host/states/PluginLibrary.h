#ifndef KYR_HOST_STATES_PLUGINLIBRARY_H
#define KYR_HOST_STATES_PLUGINLIBRARY_H

#include <string>
#include <vector>

#include "states/PluginReport.h"

class TCIMClass;

/// A plugin library in the plugin folder, its document, and what became of it.
struct TPluginLibrary {
    std::string path;                           ///< below the plugin folder, such as "./disk/libdisk.pi.so"
    std::vector<TCIMClass*> classes;            ///< those that its document brought
    std::vector<std::string> duplicateClasses;  ///< those in it that another document had brought
    TOutcome notLoaded;                         ///< why it is not to be loaded, if it is not
    TPluginReport report;

    /// The path of its document, or an empty one where the library's path gives none.
    std::string DocumentPath() const;
    /// Files each message with the class of the library that it speaks of. A plugin begins a line about a class with
    /// the name of the class and ": "; the core's lines have it anywhere.
    void AssignMessagesToClasses();
};

#endif
