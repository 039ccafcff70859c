#ifndef KYR_HOST_STATES_PLUGINLIBRARY_H
#define KYR_HOST_STATES_PLUGINLIBRARY_H

#include <string>
#include <vector>

#include "model/ClassSelection.h"
#include "model/Needs.h"
#include "states/MissingSources.h"
#include "states/PluginReport.h"

class TCIMClass;

/// A shared library in the plugin folder, the classes of its document, and how loading and running it went.
struct TPluginLibrary {
    std::string folder;                         ///< the plugin folder
    bool isOwn = false;                         ///< that folder belongs to this executable
    bool isBuiltIn = false;                     ///< it has the name of a plugin that comes with this executable
    std::string path;                           ///< below the plugin folder, such as "./disk/libdisk.pi.so"
    std::vector<TCIMClass*> classes;            ///< declared by its document, and by none read before it
    std::vector<std::string> duplicateClasses;  ///< in its document too, but declared by another one before
    std::vector<TReason> takenClasses;          ///< of those, the ones that can have instances and go to another
    std::vector<std::string> premises;          ///< documents that the core must read before that of the library
    TOutcome notLoaded;                         ///< why it must not be loaded; complete if it may be
    TNeeds granted = 0;                         ///< what its plugins may do beyond reading
    bool isConfined = false;                    ///< what its classes need beyond that is refused
    std::vector<const TCIMClass*> leftOut;      ///< its optional classes that are not asked for
    TPluginReport report;
    std::string strayDocument = {};  ///< the name of a document beside it that is no library's, if its own is missing
    TReason documentMistake;  ///< why the core refused its document, or took no class from it; none if nobody knows
    TMissingSources missingSources;  ///< of its classes

    /// The name by which it is granted something: its file's, without "lib" and ".pi.so".
    std::string Name() const;
    /// Its path with that of the plugin folder in front.
    std::string FullPath() const;
    /// The same of its document; empty if the core cannot derive it from the library's path.
    std::string FullDocumentPath() const;
    /// Whether its document declares the class, and no document read before it.
    bool Declares(const std::string& className) const;
    /// The first thing that the class needs and that is not granted; empty if there is none.
    std::string FindUngranted(const TCIMClass& cls) const;
    /// Finds the optional classes that are not asked for: those that are not named, unless what they need is granted.
    void LeaveOutOptional(const TClassSelection& wanted);
    bool IsLeftOut(const TCIMClass& cls) const;
    /// Whether that is so of all classes that can have instances, so that the library need not be loaded.
    bool IsLeftOut() const;
    /// Finds for each message of the report the class of this library that it is about. Plugins begin a line about a
    /// class with its name and ": "; in the core's lines the name may stand anywhere.
    void AssignMessagesToClasses();
    /// Takes those of this library's classes over from what all plugins reported.
    void AssignMissingSources(TMissingSources& all);
};

#endif
