#ifndef KYR_HOST_ISOLATION_INSTANCEMERGER_H
#define KYR_HOST_ISOLATION_INSTANCEMERGER_H

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/TimePoint.h"
#include "isolation/InstanceRecords.h"
#include "isolation/PluginContainer.h"
#include "states/PluginReport.h"

struct TPluginLibrary;

/// How long the host stores instances before it looks again for signals and for processes that have ended.
class TTimeSlice {
public:
    static constexpr std::chrono::milliseconds kLength{1};

    bool IsOver() const { return TClock::now() >= fEnd; }

private:
    const TTimePoint fEnd = TClock::now() + kLength;
};

/// Stores the instances that one plugin's process delivers in the host's container, while that process still runs or
/// later. The records may be damaged or malicious; the container checks each instance as if the plugin itself had
/// stored it there.
class TInstanceMerger {
public:
    enum class EProgress {
        eTookAll,    ///< all that was there; more may come
        eOutOfTime,  ///< the time slice is over, and there is more
        eFinished    ///< no instance of the wanted kind can come any more
    };

    TInstanceMerger(TPluginLibrary& library, TPluginContainer& container)
        : fLibrary(library), fContainer(container), fInstances(container) {}

    /// Stores instances from the records, which begin with those of the last call: first, in as many calls as it takes,
    /// those of ordinary classes, and then, with associations, the others.
    EProgress Take(std::string_view records, bool associations, const TTimeSlice& slice);
    /// The plugin or the whole run was stopped, so that storing the rest must come to an end: it may take another
    /// second. What is left then is not stored.
    void StartDraining() { fIsDraining = true; }
    /// Writes in the library's report what was not stored and why. Classes of which another plugin had brought
    /// instances count as not asked for, since the core's query does not ask for them where all plugins run in one
    /// process.
    void Conclude();

private:
    EProgress TakeRecords(std::string_view records, bool associations, const TTimeSlice& slice);
    void Drop(EState state, EReason why);
    void ChargeDraining();
    void SkipFilledClasses(TRecordReader& dataCall);
    void Store(TRecordReader& record);
    void NoteRefusal(const std::string& className, const std::string& reason);

    TPluginLibrary& fLibrary;
    TPluginContainer& fContainer;
    TInstanceRecords fInstances;
    size_t fBytesTaken = 0;
    std::vector<TMessage> fRefusals;
    TOutcome fDropped;  // why the rest is not stored
    bool fIsDraining = false;
    std::chrono::milliseconds fDrainBudget{1000};
};

#endif
