#include "isolation/TapeMerge.h"

#include <algorithm>

#include "inventory/Library.h"
#include "inventory/Log.h"
#include "kyr/TCIMClass.h"
#include "kyr/TKYRException.h"

namespace {

constexpr size_t kMostRefusals = 1000;

// The core refuses what cannot be a name.
bool HasInstances(const TContainer& container, const std::string& className) try {
    const TCIMClass* const cls = container.FindClass(className);
    return cls != nullptr && !cls->EnumerateInstances(false).empty();
} catch (const TKYRException&) {
    return false;
}

}  // namespace

bool TTapeMerge::Take(bool associations, TMoment latest) {
    bool ended = false;
    fContainer.GiveTurn(&fLibrary);
    try {
        ended = TakeFrames(associations, latest);
    } catch (const TTapeError&) {
        Drop({eFailed, kTapeSpoilt});
    }
    fContainer.GiveTurn(nullptr);
    TLog::Take();  // each refusal has its reason by now
    return ended || !fDropped.reason.empty();
}

bool TTapeMerge::TakeFrames(bool associations, TMoment latest) {
    const std::string_view frames = fTape.Frames();
    while (fTaken < frames.size() && fDropped.reason.empty() && TClock::now() < latest) {
        TTapeReader reader(frames.substr(fTaken));
        EFrame kind{};
        TTapeReader frame = reader.TakeFrame(kind);
        if (kind == EFrame::eAsked) {
            if (frame.TakeNumber<uint8_t>() != 0 && !associations) return true;
            SkipWhatIsThere(frame);
        }
        if (kind == EFrame::eInstance) Store(frame);
        fTaken = frames.size() - reader.Left();
    }
    return false;
}

void TTapeMerge::Drop(const TVerdict& why) {
    if (fDropped.reason.empty()) fDropped = why;
}

void TTapeMerge::SkipWhatIsThere(TTapeReader& frame) {
    while (!frame.IsAtEnd())
        if (const std::string name = frame.TakeText(); HasInstances(fContainer, name)) fInstances.Skip(name);
}

void TTapeMerge::Store(TTapeReader& frame) {
    std::string className;
    try {
        fInstances.Store(frame, className);
    } catch (const TKYRException& e) {
        NoteRefusal(className, e.what());
    }
}

void TTapeMerge::NoteRefusal(const std::string& className, const std::string& reason) {
    fRefusals.push_back({className, kyrLogError, "an instance that its process delivered was refused: " + reason});
    if (fRefusals.size() == kMostRefusals) Drop({eFailed, "too much of what it delivered was refused"});
}

void TTapeMerge::Conclude() {
    TPluginReport& report = fLibrary.report;
    if (report.end.state == eComplete) report.end = fDropped;
    report.notes.insert(report.notes.end(), fRefusals.begin(), fRefusals.end());
    const auto isSkipped = [this](const std::string& name) { return fInstances.IsSkipped(name); };
    for (TPass& pass : report.passes)
        pass.asked.erase(std::remove_if(pass.asked.begin(), pass.asked.end(), isSkipped), pass.asked.end());
}
