#ifndef KYR_HOST_EXPORT_CLASSTABLE_H
#define KYR_HOST_EXPORT_CLASSTABLE_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "export/Tables.h"

class TCIMClass;

/// Which part of a property a column holds.
enum class EPart { eValue, eWord, eTime, eInterval };

/// What the cells of a column are made of.
struct TColumnSource {
    size_t property;  ///< index among the declarations of the class
    EPart part;
    TUnit unit;
};

/// A class as a table.
struct TClassTable {
    TTable table;
    std::vector<TColumnSource> sources;  ///< one for each column
    std::vector<size_t> keys;            ///< indexes of the declarations of keys that say more than the scope
};

/// What of a class has a column only where it is needed: indexes of declarations, in order.
struct TRareColumns {
    std::vector<size_t> scopeKeys;  ///< keys of the scope that do not say what all others say
    std::vector<size_t> intervals;  ///< of the properties that are a date and time, those that are a length of time
};

/// The tables of classes. They are made once for classes of one name and declaration, whatever collection they are of.
class TClassTables {
public:
    /// The name is that of the table, which another class may have, too. The result stays as long as this object.
    const TClassTable& Of(const TCIMClass& cls, const std::string& name, const TRareColumns& rare);

private:
    std::map<std::string, std::unique_ptr<const TClassTable>> fTables;  // by what the table depends on
};

/// The names of the tables of classes, which are in one collection: without the prefix of the schema, or with it if
/// a class before has the name.
std::vector<std::string> TableNamesOf(const std::vector<TCIMClass*>& classes);

#endif
