#ifndef KYR_HOST_ISOLATION_INSTANCERECORDS_H
#define KYR_HOST_ISOLATION_INSTANCERECORDS_H

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "isolation/RecordStream.h"

class TCIMClass;
class TCIMInstance;
class TContainer;

/// Puts a record with the values that the instance has of its own, exactly as they are: type, NULL, array size,
/// references with their keys. Instances are numbered as they come, and one that is stored once more comes again under
/// its number.
void PutInstance(TRecordStream& stream, const TCIMInstance& instance, uint32_t number);

/// Raised when an instance needs more room than there is.
class TNoRoom {};

/// Makes the instances of such records anew, in a container that has the classes.
class TInstanceRecords {
public:
    explicit TInstanceRecords(TContainer& container) : fContainer(container) {}

    /// From now on instances of the class are passed over.
    void Skip(const std::string& className) { fSkipped.insert(className); }
    bool IsSkipped(const std::string& className) const { return fSkipped.count(className) != 0; }
    /// How many bytes the instances that are stored from now on may take in a saved file. It decreases with each.
    void SetRoom(size_t bytes) { fRoom = bytes; }
    size_t Room() const { return fRoom; }
    size_t Count() const { return fCount; }
    /// Raises TRecordError for bytes that are no such record, TNoRoom, or a status of the core for an instance that the
    /// container refuses; className is set before that. A record for which there was no room can be stored later.
    void Store(TRecordReader& record, std::string& className);

private:
    /// One of the container's, which lists it as often as it was stored.
    struct TStored {
        TCIMInstance* instance;  // null: it was refused or skipped
        size_t times;
    };

    void Add(TRecordReader& record, const std::string& className);
    void Update(TRecordReader& record, TStored& listed);
    std::unique_ptr<TCIMInstance> Take(TRecordReader& record, TCIMClass* cls);
    size_t SizeOfEmpty(const TCIMClass& cls);

    TContainer& fContainer;
    std::set<std::string> fSkipped;
    uint32_t fFirst = 0;              // the number of the first
    std::vector<TStored> fInstances;  // by number
    size_t fCount = 0;                // of those stored
    size_t fRoom = SIZE_MAX;
    std::unordered_map<const TCIMClass*, size_t> fSizes;  // of instances without values
};

#endif
