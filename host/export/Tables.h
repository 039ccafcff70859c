#ifndef KYR_HOST_EXPORT_TABLES_H
#define KYR_HOST_EXPORT_TABLES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What a column holds. Unsigned64: an integer that may be beyond int64. Reference: two columns of a data base, with
/// the number of a row of the same run, or the object path if what it refers to was not collected.
enum class EColumn { eInteger, eUnsigned64, eReal, eText, eBoolean, eTime, eInterval, eJson, eReference };

/// A column of a table. Its names are safe to be quoted, and take 63 bytes at most, also with what references append.
struct TColumn {
    std::string name;  ///< in small letters, with the base unit as its end: "size_bytes"
    EColumn kind;
    int bits = 0;               ///< of eInteger 16, 32 or 64, with the sign; of eUnsigned64 64, or more if it is scaled
    std::string property = {};  ///< of CIM; empty for columns that only the tables have
    std::string cimType = {};   ///< "uint64", "string[]"; empty for such columns
    std::string unit = {};      ///< the base unit in which its numbers are, "bytes"; empty if they count nothing
    std::string declaredUnit = {};  ///< the qualifier Units of the property: "KiloBytes"
    std::string description = {};
    std::string nullMeaning = {};  ///< what a row without a value means, if it says nothing else: "not present"
    bool isVolatile = false;
};

/// The table of a class, or one of the tables' own, such as class_state.
struct TTable {
    std::string name;                 ///< of the class without the prefix of its schema: "disk_drive"
    std::string nameWithPrefix = {};  ///< if another class has that name: "abc_disk_drive"; the same for own tables
    std::string className = {};       ///< empty: it is one of the tables' own
    bool isAssociation = false;
    std::vector<TColumn> columns;  ///< without run_id, host_id and id, which the sinks add
};

/// What references append to the names of their two columns.
constexpr char kIdSuffix[] = "_id";
constexpr char kPathSuffix[] = "_path";

/// The tables' own names. A class of that name gets a table with "_" behind it.
constexpr const char* kOwnTables[] = {"host", "run", "class_state", "missing", "column_info", "change", "document"};

/// What the name of a column ends with if its name is taken by one of another type: "_text".
const char* TypeSuffix(EColumn kind);

/// A name of CIM in small letters, as the start of a name in SQL: "PCIDevice" is "pci_device".
std::string SqlWords(const std::string& cimName);
/// The name, with a "_" behind it if it is a word that SQL has for itself.
std::string Unreserved(const std::string& name);
/// A name of CIM as one of a table or column.
std::string SqlName(const std::string& cimName);
/// The name, or if it has more bytes than that, which is what data bases take, its start with a hash of the whole.
std::string ShortName(const std::string& name, size_t most = 63);

/// How the numbers of a unit become those of its base unit: KiloBytes become bytes times 1024.
struct TUnit {
    std::string base;  ///< in words: "bits per second"; empty for things that are merely counted, as packets are
    uint64_t factor = 1;
    uint64_t divisor = 1;
};
/// Of the qualifier Units. A unit that is not known stays as it is.
TUnit BaseUnitOf(const std::string& declared);

/// The table class_state: class, plugin, state, reason_code, reason, instances.
const TTable& ClassStateTable();
/// The table change: changed_at, previous_at, class, path, op, property, old, new. The later one of two runs has
/// changed; its rows stay when that run is replaced.
const TTable& ChangeTable();

#endif
