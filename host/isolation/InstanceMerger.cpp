#include "isolation/InstanceMerger.h"

#include <algorithm>

#include "base/CoreLog.h"
#include "kyr/TCIMClass.h"
#include "kyr/TKYRException.h"
#include "states/PluginLibrary.h"

namespace {

constexpr size_t kMostRefusals = 1000;

bool HasInstances(const TContainer& container, const std::string& className) {
    try {
        const TCIMClass* const cls = container.FindClass(className);
        return cls != nullptr && !cls->EnumerateInstances(false).empty();
    } catch (const TKYRException&) {  // it cannot be a name of a class
        return false;
    }
}

}  // namespace

bool TInstanceMerger::Take(bool associations, TTimePoint latest) {
    bool ended = false;
    const TLogCapture refusals;  // each of them has its message by then
    fContainer.SetActiveLibrary(&fLibrary);
    try {
        ended = TakeRecords(associations, latest);
    } catch (const TRecordError&) {
        Drop({eFailed, ReasonFor(EReason::eDeliveryDamaged)});
    }
    fContainer.SetActiveLibrary(nullptr);
    return ended || static_cast<bool>(fDropped.reason);
}

bool TInstanceMerger::TakeRecords(bool associations, TTimePoint latest) {
    const std::string_view records = fStream.Records();
    while (fTaken < records.size() && !fDropped.reason && TClock::now() < latest) {
        TRecordReader reader(records.substr(fTaken));
        ERecord kind{};
        TRecordReader record = reader.TakeRecord(kind);
        if (kind == ERecord::eAsked) {
            if (record.TakeNumber<uint8_t>() != 0 && !associations) return true;
            SkipWhatIsThere(record);
        }
        if (kind == ERecord::eInstance) Store(record);
        fTaken = records.size() - reader.Left();
    }
    return false;
}

void TInstanceMerger::Drop(const TOutcome& why) {
    if (!fDropped.reason) fDropped = why;
}

void TInstanceMerger::SkipWhatIsThere(TRecordReader& record) {
    while (!record.IsAtEnd())
        if (const std::string name = record.TakeText(); HasInstances(fContainer, name)) fInstances.Skip(name);
}

void TInstanceMerger::Store(TRecordReader& record) {
    std::string className;
    try {
        fInstances.Store(record, className);
    } catch (const TKYRException& e) {
        NoteRefusal(className, e.what());
    }
}

void TInstanceMerger::NoteRefusal(const std::string& className, const std::string& reason) {
    fRefusals.push_back({className, kyrLogError, "an instance that its process delivered was refused: " + reason});
    if (fRefusals.size() == kMostRefusals) Drop({eFailed, ReasonFor(EReason::eTooManyRefused)});
}

void TInstanceMerger::Conclude() {
    TPluginReport& report = fLibrary.report;
    if (report.end.state == eComplete) report.end = fDropped;
    report.messages.insert(report.messages.end(), fRefusals.begin(), fRefusals.end());
    const auto isSkipped = [this](const std::string& name) { return fInstances.IsSkipped(name); };
    for (TDataCall& call : report.dataCalls)
        call.asked.erase(std::remove_if(call.asked.begin(), call.asked.end(), isSkipped), call.asked.end());
}
