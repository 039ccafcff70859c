#ifndef KYR_HOST_ISOLATION_INSTANCEMERGER_H
#define KYR_HOST_ISOLATION_INSTANCEMERGER_H

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/TimePoint.h"
#include "isolation/InstanceRecords.h"
#include "isolation/PluginContainer.h"
#include "isolation/StorageRoom.h"
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
        eFinished    ///< no instance can be stored in this pass any more
    };

    /// Storing may take as many seconds as the plugin itself, but a second at least.
    TInstanceMerger(TPluginLibrary& library, TPluginContainer& container, TStorageRoom& room, double seconds);

    /// Stores instances from the records, which begin with those of the last call, in as many calls for each pass as it
    /// takes: those of ordinary classes in the first two passes, and those of associations in the last.
    EProgress Take(std::string_view records, EPass pass, const TTimeSlice& slice);
    /// How much of the records was taken.
    size_t BytesTaken() const { return fBytesTaken; }
    /// The plugin was stopped, so that storing the rest must come to an end: it may take another second. What is left
    /// then is not stored.
    void Hurry() { LimitTime(std::chrono::seconds(1)); }
    /// Writes in the library's report what was not stored and why. Classes of which another plugin had brought
    /// instances count as not asked for, since the core's query does not ask for them where all plugins run in one
    /// process.
    void Conclude();

private:
    void BeginPass(EPass pass);
    EProgress TakeGuarded(std::string_view records, const TTimeSlice& slice);
    EProgress TakeRecords(std::string_view records, const TTimeSlice& slice);
    EProgress StopForWantOfRoom();
    void Drop(EState state, EReason why);
    void LimitTime(TStorageRoom::TTime most) { fTime = std::min(fTime, most); }
    void SpendTime(TStorageRoom::TTime time);
    void SkipFilledClasses(TRecordReader& dataCall);
    void Store(TRecordReader& record);
    void NoteRefusal(const std::string& className, const std::string& reason);

    TPluginLibrary& fLibrary;
    TPluginContainer& fContainer;
    TInstanceRecords fInstances;
    size_t fBytesTaken = 0;
    std::vector<TMessage> fRefusals;
    TOutcome fDropped;  // why the rest is not stored
    TStorageRoom& fRoom;
    std::optional<EPass> fPass;
    TStorageRoom::TTime fTime;  // that storing may still take
    bool fIsRunStopped = false;
};

#endif
