#ifndef KYR_HOST_STATES_INTERFACEVERSION_H
#define KYR_HOST_STATES_INTERFACEVERSION_H

#include <string>

/// How the version of the plugin interface that a plugin was built for fits to this host.
enum class EFit {
    eFits,
    eNewerMinor,  ///< it may count on calls that are not there, or on what is not done for it
    eNewerMajor,  ///< calls and records may mean something else to it
    eUnknown      ///< no version, or one that never was
};

EFit FitOf(const std::string& version);

/// What is to be told of a plugin that was built for that version and runs; empty if there is nothing to tell.
std::string DoubtAbout(const std::string& version);

#endif
