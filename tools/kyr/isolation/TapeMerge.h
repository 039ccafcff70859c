#ifndef TAPEMERGE_H
#define TAPEMERGE_H

#include <cstddef>
#include <string>
#include <vector>

#include "isolation/InstanceFrame.h"
#include "isolation/Tape.h"
#include "isolation/TimeSpan.h"
#include "states/PluginReport.h"

/// Takes the instances off a plugin's tape and stores them in a container, while the plugin still fills the tape or
/// later.
class TTapeMerge {
public:
    TTapeMerge(const TTape& tape, TContainer& container) : fTape(tape), fContainer(container), fInstances(container) {}

    /// Takes the instances of ordinary classes that are there, until that moment. True: it has come to the
    /// associations, and there are no more.
    bool TakeOrdinary(TMoment latest) { return Take(false, latest); }
    /// Once all ordinary ones are taken.
    void TakeAssociations() { Take(true, TMoment::max()); }
    /// Notes in the report what could not be stored, and that classes were not asked for which another plugin had
    /// brought: that is how it is where all run in one process.
    void Conclude(TPluginReport& report);

private:
    bool Take(bool associations, TMoment latest);
    bool TakeFrames(bool associations, TMoment latest);
    void SkipWhatIsThere(TTapeReader& frame);
    void Store(TTapeReader& frame);
    void NoteRefusal(const std::string& className, const std::string& reason);

    const TTape& fTape;
    TContainer& fContainer;
    TInstanceFrames fInstances;
    size_t fTaken = 0;  // bytes
    std::vector<TNote> fRefusals;
};

#endif
