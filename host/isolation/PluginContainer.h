#ifndef KYR_HOST_ISOLATION_PLUGINCONTAINER_H
#define KYR_HOST_ISOLATION_PLUGINCONTAINER_H

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "kyr/TContainer.h"

class TRecordStream;
struct TPluginLibrary;

/// A container in which each library has its turn to fill the classes that are its own, or nobody's. In a plugin's
/// process it puts each instance on a stream as soon as it is stored.
class TPluginContainer : public TContainer {
public:
    /// Instances that are made from now on go to the stream; before anything is put there, beforeRecord is called.
    void StartStreaming(TRecordStream& stream, std::function<void()> beforeRecord);

    /// Null: the class is ours alone.
    void SetOwner(const TCIMClass& cls, const TPluginLibrary* library) { fOwners[&cls] = library; }
    /// Whose instances are made from now on; null: ours, of any class.
    void SetActiveLibrary(const TPluginLibrary* library) { fActive = library; }

    /// Notes the name of a class that is there already, as a document that is read may bring it.
    TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const override;
    /// The names that were noted since the last call.
    std::vector<std::string> TakeDuplicateClasses() { return std::exchange(fDuplicates, {}); }

    /// Raises kyrStatusAccessDenied if the class belongs to another than the one that has its turn.
    TCIMInstance* AllocateInstance(TCIMClass* cls) const override;

private:
    friend class TPluginInstance;

    void Put(const TCIMInstance& instance, uint32_t& number) const;

    std::map<const TCIMClass*, const TPluginLibrary*> fOwners;
    const TPluginLibrary* fActive = nullptr;
    mutable std::vector<std::string> fDuplicates;
    TRecordStream* fStream = nullptr;
    std::function<void()> fBeforeRecord;
    mutable uint32_t fCount = 0;
};

#endif
