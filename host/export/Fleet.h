#ifndef KYR_HOST_EXPORT_FLEET_H
#define KYR_HOST_EXPORT_FLEET_H

#include <cstddef>
#include <string>
#include <vector>

#include "export/CollectionExport.h"

class IRunSink;

struct TFleetOptions {
    std::vector<std::string> classes = {};  ///< only these and their subclasses; empty: all
    size_t workers = 0;                     ///< processes that read files; 0: as many as there are processors
};

/// What became of saved collections.
struct TFleetCounts {
    size_t files = 0;
    size_t stored = 0;
    size_t alreadyStored = 0;
    size_t older = 0;
    size_t unreadable = 0;
    std::vector<std::string> unknownClasses = {};  ///< those of the wanted ones that none knows
};

/// Hands the saved collections to the sink in their order, each read in one of several processes. Those that cannot be
/// read are told on standard error and counted. Does not call the sink's Finish.
TFleetCounts ExportFiles(const std::vector<TSource>& files, const TFleetOptions& options, IRunSink& sink);
/// "1000 files: 990 runs stored, 5 already there, 2 older than the stored one, 3 unreadable"
std::string TextOf(const TFleetCounts& counts);

#endif
