#include "TapeReport.h"

#include <algorithm>

#include "InstanceFrame.h"
#include "Library.h"
#include "Log.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"

namespace {

// No text of a report can have a NUL, but for one that was not put there by us.
std::string TakeReportText(TTapeReader& frame) {
    const std::string text = frame.TakeText();
    if (text.find('\0') != std::string::npos) throw TTapeError();
    return text;
}

void ReadLogLine(TTapeReader& frame, TPluginReport& report) {
    TLogLine line{};
    line.core = frame.TakeNumber<uint8_t>() != 0;
    line.severity = static_cast<kyrLogSeverity>(frame.TakeNumber<int>());
    line.text = TakeReportText(frame);
    report.Read(line);
    report.log.push_back(line);
}

void ReadAsked(TTapeReader& frame, TPluginReport& report) {
    report.passes.push_back({frame.TakeNumber<uint8_t>() != 0, {}});
    while (!frame.IsAtEnd()) report.passes.back().asked.push_back(TakeReportText(frame));
}

void ReadEnded(TTapeReader& frame, TPluginReport& report) {
    if (report.passes.empty()) throw TTapeError();
    report.passes.back().finished = true;
    report.passes.back().end = TakeReportText(frame);
}

void ReadPlugin(TTapeReader& frame, TPluginReport& report) {
    TPluginFacts facts;
    facts.name = TakeReportText(frame);
    facts.version = TakeReportText(frame);
    facts.type = frame.TakeNumber<int32_t>();
    facts.initialised = frame.TakeNumber<uint8_t>() != 0;
    report.plugins.push_back(facts);
}

void ReadFrame(EFrame kind, TTapeReader& frame, TPluginReport& report) {
    switch (kind) {
        case EFrame::ePlugin:
            return ReadPlugin(frame, report);
        case EFrame::eRefusal:
            report.refusal = TakeReportText(frame);
            return;
        case EFrame::eLog:
            return ReadLogLine(frame, report);
        case EFrame::eAsked:
            return ReadAsked(frame, report);
        case EFrame::eEnded:
            return ReadEnded(frame, report);
        case EFrame::eInstance:
            return;
    }
    throw TTapeError();
}

// The core refuses what cannot be a name.
bool HasInstances(const TContainer& container, const std::string& className) try {
    const TCIMClass* const cls = container.FindClass(className);
    return cls != nullptr && !cls->EnumerateInstances(false).empty();
} catch (const TKYRException&) {
    return false;
}

// What another plugin has brought already is not asked for where all run in one process.
void SkipWhatIsThere(TPass& pass, const TContainer& container, TInstanceFrames& frames) {
    const auto isThere = [&](const std::string& name) {
        if (!HasInstances(container, name)) return false;
        frames.Skip(name);
        return true;
    };
    pass.asked.erase(std::remove_if(pass.asked.begin(), pass.asked.end(), isThere), pass.asked.end());
}

void NoteRefusal(const std::string& className, const std::string& reason, TPluginReport& report) {
    report.notes.push_back({className, kyrLogError, "an instance that its process delivered was refused: " + reason});
}

void Store(TInstanceFrames& frames, TTapeReader& frame, TPluginReport& report) {
    std::string className;
    try {
        frames.Store(frame, className);
    } catch (const TKYRException& e) {
        NoteRefusal(className, e.what(), report);
    }
}

void StorePass(const TTape& tape, bool associations, TInstanceFrames& frames, TPluginReport& report) {
    bool wanted = false;
    for (TTapeReader reader(tape.Frames()); !reader.IsAtEnd();) {
        EFrame kind{};
        TTapeReader frame = reader.TakeFrame(kind);
        if (kind == EFrame::eAsked) wanted = (frame.TakeNumber<uint8_t>() != 0) == associations;
        if (kind == EFrame::eInstance && wanted) Store(frames, frame, report);
    }
}

}  // namespace

bool ReadReport(const TTape& tape, TPluginReport& report) try {
    for (TTapeReader reader(tape.Frames()); !reader.IsAtEnd();) {
        EFrame kind{};
        TTapeReader frame = reader.TakeFrame(kind);
        ReadFrame(kind, frame, report);
    }
    return true;
} catch (const TTapeError&) {
    return false;
}

void MergeInstances(const TTape& tape, bool associations, TContainer& container, TPluginReport& report) {
    TInstanceFrames frames(container);
    for (TPass& pass : report.passes)
        if (pass.associations == associations) SkipWhatIsThere(pass, container, frames);
    try {
        StorePass(tape, associations, frames, report);
    } catch (const TTapeError&) {
        NoteRefusal("", "its bytes are spoilt", report);
    }
    TLog::Take();  // each refusal has its reason by now
}
