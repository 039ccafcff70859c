#ifndef KYR_HOST_EXPORT_RUNSINK_H
#define KYR_HOST_EXPORT_RUNSINK_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "export/Tables.h"

/// What one cell of a row holds. It fits the kind of its column, or is null.
struct TCell {
    enum EKind : uint8_t {
        eNull,
        eInteger,   ///< integer; also a boolean, 0 or 1
        eDigits,    ///< text: the decimal digits of an integer beyond int64
        eReal,      ///< real; may be infinite or no number
        eText,      ///< text, valid UTF-8 without NUL; JSON for eJson, ISO 8601 for eTime and eInterval
        eReference  ///< integer: the row in the same run, or 0; text: the object path, if there is no row or WantsPaths
    };

    EKind kind = eNull;
    int64_t integer = 0;
    double real = 0;
    std::string text = {};
};

/// Why a cell is null.
struct TMissingValue {
    size_t column;       ///< index in the table's columns
    std::string reason;  ///< "no permission"
    std::string source;  ///< "/sys/..."; may be empty
};

struct TRow {
    int64_t id = 0;            ///< one numbering over all classes of a run, from 1; 0 in the tables' own
    std::string key = {};      ///< what tells it from others of its class: "/dev/sda"; empty in the tables' own, and of
                               ///< associations unless paths are wanted
    std::vector<TCell> cells;  ///< as many as the table has columns
    std::vector<TMissingValue> missing = {};
};

/// One collection of one host. Texts are empty if the collection does not tell.
struct TRun {
    std::string name, machineId, uuid, serial;  ///< of the host; what says nothing, as "To be filled", is empty
    std::string collectedAt;  ///< ISO 8601 with the offset from UTC; of the file if the collection has no time
    int64_t collectedMicroseconds = 0;  ///< since 1970 in UTC, to order runs by
    std::string tool, toolVersion;
    std::optional<bool> superuser;
    std::string state, reasonCode, reason;  ///< the words
    uint64_t fingerprint = 0;               ///< of the uncompressed document
    std::string file;                       ///< its name; empty for this machine
    std::vector<std::string> knownClasses;  ///< those of the wanted classes that the collection knows
};

/// What a sink does with a run, and what it has of the same host.
struct TVerdict {
    enum EWhat : uint8_t { eStore, eAlreadyStored, eOlder };

    /// A run of the same host next to this one in time, among those that are stored.
    struct TNeighbour {
        bool isOlder;          ///< than this run; changes are found from the older to the newer
        std::string document;  ///< the saved collection, compressed or not; empty: it is in the file
        std::string file = {};
        std::string collectedAt;
    };

    EWhat what = eStore;
    std::string refusal = {};  ///< what is told of a run that is older: of which host and when the stored one is
    std::vector<TNeighbour> neighbours = {};
};

/// Where rows go. The calls for one run: Decide; if it is to be stored, Begin, then Table and Row, the Document if it
/// is wanted, and End. Runs come one after the other. What cannot be written raises TCommandError with eExitOutput.
class IRunSink {
public:
    IRunSink() = default;
    virtual ~IRunSink() = default;
    IRunSink(const IRunSink&) = delete;
    IRunSink& operator=(const IRunSink&) = delete;

    /// Whether saved collections themselves are wanted.
    virtual bool WantsDocuments() const { return false; }
    /// Whether references come with their object paths also where there is a row for what they refer to.
    virtual bool WantsPaths() const { return false; }
    /// What is to become of the run. It may be asked before runs in front of it are complete, if they have no name and
    /// no identifier in common. It changes and prints nothing.
    virtual TVerdict Decide(const TRun&) { return {}; }
    virtual void Begin(const TRun& run) = 0;
    /// Before the rows of a run for each table that it knows, also if it has no row for it. Until Finish, tables of the
    /// same columns are the same object.
    virtual void Table(const TTable& table) = 0;
    virtual void Row(const TTable& table, TRow&& row) = 0;
    /// The saved collection, compressed.
    virtual void Document(std::string&&) {}
    /// The run is complete.
    virtual void End() = 0;
    /// It will not be complete: what came since Begin is to be forgotten.
    virtual void Abandon() = 0;
    /// All runs are there.
    virtual void Finish() = 0;
};

#endif
