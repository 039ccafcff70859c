#ifndef KYR_HOST_ISOLATION_INSTANCEMERGER_H
#define KYR_HOST_ISOLATION_INSTANCEMERGER_H

#include <cstddef>
#include <string>
#include <vector>

#include "base/TimePoint.h"
#include "isolation/InstanceRecords.h"
#include "isolation/PluginContainer.h"
#include "isolation/RecordStream.h"
#include "states/PluginReport.h"

struct TPluginLibrary;

/// Takes the instances off a plugin's stream and stores them in a container, while the plugin still fills the stream or
/// later.
class TInstanceMerger {
public:
    TInstanceMerger(const TRecordStream& stream, TPluginLibrary& library, TPluginContainer& container)
        : fStream(stream), fLibrary(library), fContainer(container), fInstances(container) {}

    /// Takes the instances that are there, until that moment: those of ordinary classes, or once all of them are taken
    /// those of associations. True: it has come from the ones to the others, or all the rest is dropped.
    bool Take(bool associations, TTimePoint latest);
    /// Passes over all the rest.
    void Drop(const TOutcome& why);
    /// Notes in the library's report what could not be stored, and that classes were not asked for which another plugin
    /// had brought: that is how it is where all run in one process.
    void Conclude();

private:
    bool TakeRecords(bool associations, TTimePoint latest);
    void SkipWhatIsThere(TRecordReader& record);
    void Store(TRecordReader& record);
    void NoteRefusal(const std::string& className, const std::string& reason);

    const TRecordStream& fStream;
    TPluginLibrary& fLibrary;
    TPluginContainer& fContainer;
    TInstanceRecords fInstances;
    size_t fTaken = 0;  // bytes
    std::vector<TMessage> fRefusals;
    TOutcome fDropped;  // why the rest is
};

#endif
