#ifndef TAPEMERGE_H
#define TAPEMERGE_H

#include <cstddef>
#include <string>
#include <vector>

#include "isolation/InstanceFrame.h"
#include "isolation/StreamingContainer.h"
#include "isolation/Tape.h"
#include "isolation/TimeSpan.h"
#include "states/PluginReport.h"

struct TLibrary;

/// Takes the instances off a plugin's tape and stores them in a container, while the plugin still fills the tape or
/// later.
class TTapeMerge {
public:
    TTapeMerge(const TTape& tape, TLibrary& library, TStreamingContainer& container)
        : fTape(tape), fLibrary(library), fContainer(container), fInstances(container) {}

    /// Takes the instances that are there, until that moment: those of ordinary classes, or once all of them are taken
    /// those of associations. True: it has come from the ones to the others, or all the rest is dropped.
    bool Take(bool associations, TMoment latest);
    /// Passes over all the rest.
    void Drop(const TVerdict& why);
    /// Notes in the library's report what could not be stored, and that classes were not asked for which another plugin
    /// had brought: that is how it is where all run in one process.
    void Conclude();

private:
    bool TakeFrames(bool associations, TMoment latest);
    void SkipWhatIsThere(TTapeReader& frame);
    void Store(TTapeReader& frame);
    void NoteRefusal(const std::string& className, const std::string& reason);

    const TTape& fTape;
    TLibrary& fLibrary;
    TStreamingContainer& fContainer;
    TInstanceFrames fInstances;
    size_t fTaken = 0;  // bytes
    std::vector<TNote> fRefusals;
    TVerdict fDropped;  // why the rest is
};

#endif
