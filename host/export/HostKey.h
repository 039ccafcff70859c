#ifndef KYR_HOST_EXPORT_HOSTKEY_H
#define KYR_HOST_EXPORT_HOSTKEY_H

#include <cstdint>
#include <string>

#include "export/RunSink.h"

/// A host that a data base has. Texts are empty if they are not known.
struct TKnownHost {
    int64_t id = 0;
    std::string key, name, machineId, uuid, serial;
    std::string file = {};  ///< of its last run
};

/// What a host is found by: the strongest of machine ID, UUID, serial number and name, "machine-id:...".
std::string HostKeyOf(const TRun& run);
/// Whether the run is of that host: key and name are the same, and neither UUID nor serial number differ where both are
/// known. Of a copied system, or of two machines of one name, the runs must never come to one host.
bool IsOfHost(const TRun& run, const TKnownHost& host);
/// The warning that the run is of another host than that one, although they have an identifier in common; empty if they
/// have none.
std::string CloneWarning(const TRun& run, const TKnownHost& host);

#endif
