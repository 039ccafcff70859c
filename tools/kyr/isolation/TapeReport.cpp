#include "isolation/TapeReport.h"

#include "isolation/Tape.h"
#include "states/PluginReport.h"

namespace {

// More than these only a plugin can have that means no good, and to read it all would take us too long.
constexpr size_t kMostPlugins = 100;
constexpr size_t kMostLines = 1'000'000;
constexpr size_t kMostNames = 1'000'000;
constexpr size_t kMostPasses = 2;

template <typename TElement>
void RequireRoom(const std::vector<TElement>& elements, size_t most) {
    if (elements.size() >= most) throw TTapeError();
}

// No text of a report can have a NUL, but for one that was not put there by us.
std::string TakeReportText(TTapeReader& frame) {
    const std::string text = frame.TakeText();
    if (text.find('\0') != std::string::npos) throw TTapeError();
    return text;
}

void ReadLogLine(TTapeReader& frame, TPluginReport& report) {
    RequireRoom(report.log, kMostLines);
    TLogLine line{};
    line.core = frame.TakeNumber<uint8_t>() != 0;
    line.severity = static_cast<kyrLogSeverity>(frame.TakeNumber<int>());
    line.text = TakeReportText(frame);
    report.Read(line);
    report.log.push_back(line);
}

void ReadAsked(TTapeReader& frame, TPluginReport& report) {
    RequireRoom(report.passes, kMostPasses);
    report.passes.push_back({frame.TakeNumber<uint8_t>() != 0, {}});
    std::vector<std::string>& asked = report.passes.back().asked;
    while (!frame.IsAtEnd()) {
        RequireRoom(asked, kMostNames);
        asked.push_back(TakeReportText(frame));
    }
}

void ReadEnded(TTapeReader& frame, TPluginReport& report) {
    if (report.passes.empty()) throw TTapeError();
    report.passes.back().finished = true;
    report.passes.back().end = TakeReportText(frame);
}

void ReadPlugin(TTapeReader& frame, TPluginReport& report) {
    RequireRoom(report.plugins, kMostPlugins);
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
