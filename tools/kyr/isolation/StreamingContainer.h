#ifndef STREAMINGCONTAINER_H
#define STREAMINGCONTAINER_H

#include <functional>
#include <map>

#include "kyr/TContainer.h"

class TTape;
struct TLibrary;

/// A container in which each library has its turn to fill the classes that are its own, or nobody's. In a plugin's
/// process it puts each instance on a tape as soon as it is stored.
class TStreamingContainer : public TContainer {
public:
    /// Instances that are made from now on go to the tape; before anything is put there, beforeFrame is called.
    void StartStreaming(TTape& tape, std::function<void()> beforeFrame);

    /// Null: the class is ours alone.
    void SetOwner(const TCIMClass& cls, const TLibrary* library) { fOwners[&cls] = library; }
    /// Whose instances are made from now on; null: ours, of any class.
    void GiveTurn(const TLibrary* library) { fTurn = library; }

    /// Raises kyrStatusAccessDenied if the class belongs to another than the one that has its turn.
    TCIMInstance* AllocateInstance(TCIMClass* cls) const override;

private:
    friend class TStreamedInstance;

    void Put(const TCIMInstance& instance, uint32_t& number) const;

    std::map<const TCIMClass*, const TLibrary*> fOwners;
    const TLibrary* fTurn = nullptr;
    TTape* fTape = nullptr;
    std::function<void()> fBeforeFrame;
    mutable uint32_t fCount = 0;
};

#endif
