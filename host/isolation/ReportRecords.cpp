#include "isolation/ReportRecords.h"

#include "isolation/RecordStream.h"
#include "kyr/TCIMClass.h"
#include "states/PluginReport.h"

namespace {

// Limits that no working plugin reaches. Without them a hostile one could keep the host reading for too long.
constexpr size_t kMostPlugins = 100;
constexpr size_t kMostLines = 1'000'000;
constexpr size_t kMostNames = 1'000'000;
constexpr size_t kMostDataCalls = 2;

constexpr std::string TRefusedCall::*kRefusedCallTexts[] = {&TRefusedCall::call, &TRefusedCall::className,
                                                            &TRefusedCall::name, &TRefusedCall::given};

template <typename TElement>
void RequireRoom(const std::vector<TElement>& elements, size_t most) {
    if (elements.size() >= most) throw TRecordError();
}

// Nothing is loaded any more once the data entry was called.
void RequireLoading(const TPluginReport& report) {
    if (!report.dataCalls.empty()) throw TRecordError();
}

// The functions below put C strings, so that a text with a NUL is none of theirs.
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

void ReadDataCall(TRecordReader& record, TPluginReport& report) {
    RequireRoom(report.dataCalls, kMostDataCalls);
    report.dataCalls.push_back({record.TakeNumber<uint8_t>() != 0, {}});
    std::vector<std::string>& asked = report.dataCalls.back().asked;
    while (!record.IsAtEnd()) {
        RequireRoom(asked, kMostNames);
        asked.push_back(TakeReportText(record));
    }
}

void ReadDataCallEnd(TRecordReader& record, TPluginReport& report) {
    if (report.dataCalls.empty()) throw TRecordError();
    report.dataCalls.back().finished = true;
    TCallFailure& failure = report.dataCalls.back().failure;
    failure.text = TakeReportText(record);
    failure.status = record.TakeNumber<int32_t>();
}

void ReadRefusedCall(TRecordReader& record, TPluginReport& report) {
    RequireRoom(report.messages, kMostLines);
    TRefusedCall call{};
    call.status = static_cast<kyrStatusCode>(record.TakeNumber<int32_t>());
    for (std::string TRefusedCall::*text : kRefusedCallTexts) call.*text = TakeReportText(record);
    report.AddRefusedCall(call);
}

void ReadPlugin(TRecordReader& record, TPluginReport& report) {
    RequireLoading(report);
    RequireRoom(report.plugins, kMostPlugins);
    TPluginInfo plugin;
    plugin.name = TakeReportText(record);
    plugin.version = TakeReportText(record);
    plugin.interfaceVersion = TakeReportText(record);
    plugin.type = record.TakeNumber<int32_t>();
    plugin.initialised = record.TakeNumber<uint8_t>() != 0;
    report.plugins.push_back(plugin);
}

void ReadRecord(ERecord kind, TRecordReader& record, TPluginReport& report) {
    switch (kind) {
        case ERecord::ePlugin:
            return ReadPlugin(record, report);
        case ERecord::eLoadFailure:
            RequireLoading(report);
            report.loadFailure = TakeReportText(record);
            return;
        case ERecord::eLogLine:
            return ReadLogLine(record, report);
        case ERecord::eDataCall:
            return ReadDataCall(record, report);
        case ERecord::eDataCallEnd:
            return ReadDataCallEnd(record, report);
        case ERecord::eRefusedCall:
            return ReadRefusedCall(record, report);
        case ERecord::eInstance:
            return;
    }
    throw TRecordError();
}

}  // namespace

void PutPlugins(TRecordStream& stream, const TPluginReport& report) {
    for (const TPluginInfo& plugin : report.plugins) {
        stream.Begin(ERecord::ePlugin);
        stream.PutText(plugin.name);
        stream.PutText(plugin.version);
        stream.PutText(plugin.interfaceVersion);
        stream.PutNumber(plugin.type);
        stream.PutNumber(plugin.initialised);
        stream.Commit();
    }
    if (report.loadFailure.empty()) return;
    stream.Begin(ERecord::eLoadFailure);
    stream.PutText(report.loadFailure);
    stream.Commit();
}

void PutDataCall(TRecordStream& stream, const std::vector<TCIMClass*>& classes) {
    stream.Begin(ERecord::eDataCall);
    stream.PutNumber(classes.front()->IsAssociation());
    for (const TCIMClass* cls : classes) stream.PutText(cls->GetName());
    stream.Commit();
}

void PutDataCallEnd(TRecordStream& stream, const TCallFailure& failure) {
    stream.Begin(ERecord::eDataCallEnd);
    stream.PutText(failure.text);
    stream.PutNumber(failure.status);
    stream.Commit();
}

void PutLogLine(TRecordStream& stream, const ILogger::TLogEntry& entry) {
    stream.Begin(ERecord::eLogLine);
    stream.PutNumber(entry.plugin == nullptr);
    stream.PutNumber(entry.severity);
    stream.PutText(entry.text);
    stream.Commit();
}

void PutRefusedCall(TRecordStream& stream, const TRefusedCall& call) {
    stream.Begin(ERecord::eRefusedCall);
    stream.PutNumber(static_cast<int32_t>(call.status));
    for (const std::string TRefusedCall::*text : kRefusedCallTexts) stream.PutText((call.*text).c_str());
    stream.Commit();
}

bool ReadReport(std::string_view records, TPluginReport& report) {
    try {
        for (TRecordReader reader(records); !reader.IsAtEnd();) {
            ERecord kind{};
            TRecordReader record = reader.TakeRecord(kind);
            ReadRecord(kind, record, report);
        }
        return true;
    } catch (const TRecordError&) {
        return false;
    }
}
