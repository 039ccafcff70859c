#ifndef KYR_HOST_ISOLATION_PLUGINCONTAINER_H
#define KYR_HOST_ISOLATION_PLUGINCONTAINER_H

#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kyr/TContainer.h"

class TRecordStream;
struct TPluginLibrary;
struct TRefusedCall;

/// A container into which several plugin libraries put instances, one after the other. While a library is active, it
/// can make instances of its own classes and of those that belong to nobody. In a plugin's process each instance is
/// put on a record stream as soon as it is stored.
class TPluginContainer : public TContainer {
public:
    /// Instances that are made from now on are put on the stream; beforeRecord is called before each of them is made
    /// and before each is put there.
    void StartStreaming(TRecordStream& stream, std::function<void()> beforeRecord);

    /// Null: the class belongs to the host.
    void SetOwner(const TCIMClass& cls, const TPluginLibrary* library) { fOwners[&cls] = library; }
    /// The library that makes the instances from now on; null: the host, which can make those of any class.
    void SetActiveLibrary(const TPluginLibrary* library) { fActive = library; }

    /// Notes the name of a class that is there already, since another document brought it.
    TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const override;
    /// The names that were noted since the last call.
    std::vector<std::string> TakeDuplicateClasses() { return std::exchange(fDuplicates, {}); }

    /// The library that made the instance, for classes that belong to no library and are asked about: those of
    /// MOLTA_MissingSource. Null if none is known.
    const TPluginLibrary* FindMaker(const TCIMInstance& instance) const;

    /// Names the class of which an instance was made last, where the refused call cannot know it: a date-time belongs
    /// to no instance yet.
    void AddPlaceTo(TRefusedCall& call) const;

    /// Raises kyrStatusAccessDenied if the class does not belong to the active library.
    TCIMInstance* AllocateInstance(TCIMClass* cls) const override;

private:
    friend class TPluginInstance;

    TCIMInstance* Note(TCIMInstance* instance) const;
    void Put(const TCIMInstance& instance, uint32_t& number) const;

    std::map<const TCIMClass*, const TPluginLibrary*> fOwners;
    const TPluginLibrary* fActive = nullptr;
    mutable const TCIMClass* fLastClass = nullptr;
    mutable std::vector<std::string> fDuplicates;
    mutable std::unordered_map<const TCIMInstance*, const TPluginLibrary*> fMakers;
    TRecordStream* fStream = nullptr;
    std::function<void()> fBeforeRecord;
    mutable uint32_t fCount = 0;  // of the instances that were stored
};

/// Puts the computer system that was collected where plugins look for it: in the plugin manager's schema.
void CopySystemToPluginSchema(const TContainer& collected);

/// Reads what the core's schema needs before it reads the document of the library. To be called before that is loaded.
void ReadPremises(const TPluginLibrary& library);

#endif
