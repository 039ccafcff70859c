#ifndef KYR_PLUGINS_COMMON_UNITFILES_H
#define KYR_PLUGINS_COMMON_UNITFILES_H

#include <string>

#include "SystemRoot.h"

// The search path of systemd: a unit in an earlier folder hides one of the same name in a later folder.
constexpr const char* kAdministratorUnits = "/etc/systemd/system";
constexpr const char* kVendorUnits = "/usr/lib/systemd/system";
constexpr const char* kOldVendorUnits = "/lib/systemd/system";
constexpr const char* kUnitFolders[] = {
    kAdministratorUnits, "/run/systemd/system", "/run/systemd/generator",     "/usr/local/lib/systemd/system",
    kVendorUnits,        kOldVendorUnits,       "/run/systemd/generator.late"};

/// The path of a unit file, which may be a dangling link; empty if there is none.
std::string FindUnitFile(const TSystemRoot& root, const std::string& name);

#endif
