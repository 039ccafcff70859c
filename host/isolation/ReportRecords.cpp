#include "isolation/ReportRecords.h"

#include "isolation/RecordStream.h"
#include "states/PluginReport.h"

namespace {

// More than these only a plugin can have that means no good, and to read it all would take us too long.
constexpr size_t kMostPlugins = 100;
constexpr size_t kMostLines = 1'000'000;
constexpr size_t kMostNames = 1'000'000;
constexpr size_t kMostDataCalls = 2;

template <typename TElement>
void RequireRoom(const std::vector<TElement>& elements, size_t most) {
    if (elements.size() >= most) throw TRecordError();
}

// No text of a report can have a NUL, but for one that was not put there by us.
std::string TakeReportText(TRecordReader& record) {
    const std::string text = record.TakeText();
    if (text.find('\0') != std::string::npos) throw TRecordError();
    return text;
}

void ReadLogLine(TRecordReader& record, TPluginReport& report) {
    RequireRoom(report.log, kMostLines);
    TLogLine line{};
    line.core = record.TakeNumber<uint8_t>() != 0;
    line.severity = static_cast<kyrLogSeverity>(record.TakeNumber<int>());
    line.text = TakeReportText(record);
    report.AddLogLine(line);
    report.log.push_back(line);
}

void ReadAsked(TRecordReader& record, TPluginReport& report) {
    RequireRoom(report.dataCalls, kMostDataCalls);
    report.dataCalls.push_back({record.TakeNumber<uint8_t>() != 0, {}});
    std::vector<std::string>& asked = report.dataCalls.back().asked;
    while (!record.IsAtEnd()) {
        RequireRoom(asked, kMostNames);
        asked.push_back(TakeReportText(record));
    }
}

void ReadEnded(TRecordReader& record, TPluginReport& report) {
    if (report.dataCalls.empty()) throw TRecordError();
    report.dataCalls.back().finished = true;
    report.dataCalls.back().failure = TakeReportText(record);
}

void ReadPlugin(TRecordReader& record, TPluginReport& report) {
    RequireRoom(report.plugins, kMostPlugins);
    TPluginInfo facts;
    facts.name = TakeReportText(record);
    facts.version = TakeReportText(record);
    facts.type = record.TakeNumber<int32_t>();
    facts.initialised = record.TakeNumber<uint8_t>() != 0;
    report.plugins.push_back(facts);
}

void ReadRecord(ERecord kind, TRecordReader& record, TPluginReport& report) {
    switch (kind) {
        case ERecord::ePlugin:
            return ReadPlugin(record, report);
        case ERecord::eRefusal:
            report.loadFailure = TakeReportText(record);
            return;
        case ERecord::eLog:
            return ReadLogLine(record, report);
        case ERecord::eAsked:
            return ReadAsked(record, report);
        case ERecord::eEnded:
            return ReadEnded(record, report);
        case ERecord::eInstance:
            return;
    }
    throw TRecordError();
}

}  // namespace

bool ReadReport(const TRecordStream& stream, TPluginReport& report) try {
    for (TRecordReader reader(stream.Records()); !reader.IsAtEnd();) {
        ERecord kind{};
        TRecordReader record = reader.TakeRecord(kind);
        ReadRecord(kind, record, report);
    }
    return true;
} catch (const TRecordError&) {
    return false;
}
