#ifndef KYR_HOST_COMMAND_COLLECTIONLIST_H
#define KYR_HOST_COMMAND_COLLECTIONLIST_H

#include <list>
#include <string>
#include <vector>

#include "base/Spool.h"
#include "export/CollectionExport.h"

/// The saved collections that arguments name. Each is a file, "@LIST" for the files that a file names, one on a line or
/// with a NUL behind each, or "-" for standard input, which is a collection or such names.
class TCollectionList {
public:
    /// Raises TCommandError with eExitUsage for a folder, and for a list that cannot be read or names nothing.
    explicit TCollectionList(const std::vector<std::string>& arguments);

    const std::vector<TSource>& Sources() const { return fSources; }

private:
    void AddStandardInput();
    void AddList(const std::string& path);
    void AddNames(const std::string& names, const std::string& list);
    void AddFile(const std::string& path);
    void AddNamed(const std::string& path);

    std::vector<TSource> fSources;
    std::list<TSpool> fCopies;  // of what can be read only once
};

#endif
