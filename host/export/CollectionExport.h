#ifndef KYR_HOST_EXPORT_COLLECTIONEXPORT_H
#define KYR_HOST_EXPORT_COLLECTIONEXPORT_H

#include <string>
#include <vector>

class IRunSink;
class TClassTables;

/// A saved collection.
struct TSource {
    std::string path;
    std::string
        name;  ///< what it is called in messages and as the file of its run; empty: this machine, just collected
};

/// Reads the collection and hands it to the sink, from Decide to End; if it is not to be stored, to Decide and End
/// alone. Raises TCommandError if it cannot be read, also if it does not tell of which host it is.
void ExportCollection(const TSource& source, const std::vector<std::string>& classes, TClassTables& tables,
                      IRunSink& sink);

#endif
