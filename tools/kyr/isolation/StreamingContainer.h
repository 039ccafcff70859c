#ifndef STREAMINGCONTAINER_H
#define STREAMINGCONTAINER_H

#include <functional>

#include "kyr/TContainer.h"

class TTape;

/// A container that, in a plugin's process, puts each instance on a tape as soon as it is stored.
class TStreamingContainer : public TContainer {
public:
    /// Instances that are made from now on go to the tape; before anything is put there, beforeFrame is called.
    void StartStreaming(TTape& tape, std::function<void()> beforeFrame);

    TCIMInstance* AllocateInstance(TCIMClass* cls) const override;

private:
    friend class TStreamedInstance;

    void Put(const TCIMInstance& instance, uint32_t& number) const;

    TTape* fTape = nullptr;
    std::function<void()> fBeforeFrame;
    mutable uint32_t fCount = 0;
};

#endif
