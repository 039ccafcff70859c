#ifndef KYR_HOST_EXPORT_TABLENAMES_H
#define KYR_HOST_EXPORT_TABLENAMES_H

#include <map>
#include <set>
#include <string>

#include "export/Tables.h"

/// Which name the rows of a class have in a text: that of its table, or if another class came with that name before,
/// the one with the prefix of its schema.
class TTableNames {
public:
    const std::string& Of(const TTable& table) {
        const auto [found, isNew] = fNames.try_emplace(table.className.empty() ? table.name : table.className);
        if (isNew) found->second = fTaken.insert(table.name).second ? table.name : table.nameWithPrefix;
        return found->second;
    }

private:
    std::map<std::string, std::string> fNames;  // by class
    std::set<std::string> fTaken;
};

#endif
