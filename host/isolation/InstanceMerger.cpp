#include "isolation/InstanceMerger.h"

#include <algorithm>

#include "base/CoreLog.h"
#include "kyr/TCIMClass.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "states/PluginLibrary.h"

namespace {

constexpr size_t kMostRefusals = 1000;

bool HasInstances(const TContainer& container, const std::string& className) {
    const TCIMClass* const cls = FindClassNamed(container, className);
    return cls != nullptr && !cls->EnumerateInstances(false).empty();
}

}  // namespace

TInstanceMerger::EProgress TInstanceMerger::Take(std::string_view records, bool associations, const TTimeSlice& slice) {
    const size_t before = fBytesTaken;
    const TLogCapture refusals;  // the report gets a message for each of them
    EProgress progress = EProgress::eFinished;
    fContainer.SetActiveLibrary(&fLibrary);
    try {
        progress = TakeRecords(records, associations, slice);
    } catch (const TRecordError&) {
        Drop(eFailed, EReason::eDeliveryDamaged);
    }
    fContainer.SetActiveLibrary(nullptr);
    if (fDropped.reason) return EProgress::eFinished;
    if (progress == EProgress::eOutOfTime && fBytesTaken != before) ChargeDraining();
    return progress;
}

// A plugin may have made what it says it has committed smaller than what was taken, so that the end may be passed.
TInstanceMerger::EProgress TInstanceMerger::TakeRecords(std::string_view records, bool associations,
                                                        const TTimeSlice& slice) {
    while (fBytesTaken < records.size() && !fDropped.reason) {
        if (slice.IsOver()) return EProgress::eOutOfTime;
        TRecordReader reader(records.substr(fBytesTaken));
        ERecord kind{};
        TRecordReader record = reader.TakeRecord(kind);
        if (kind == ERecord::eDataCall) {
            if (record.TakeNumber<uint8_t>() != 0 && !associations) return EProgress::eFinished;
            SkipFilledClasses(record);
        }
        if (kind == ERecord::eInstance) Store(record);
        fBytesTaken = records.size() - reader.BytesLeft();
    }
    return EProgress::eTookAll;
}

// The whole slice is charged, however long it took: time in which the host itself was stopped must not count.
void TInstanceMerger::ChargeDraining() {
    if (!fIsDraining) return;
    fDrainBudget -= TTimeSlice::kLength;
    if (fDrainBudget <= std::chrono::milliseconds(0)) Drop(eTimedOut, EReason::eNoTimeToStore);
}

void TInstanceMerger::Drop(EState state, EReason why) {
    if (!fDropped.reason) fDropped = {state, ReasonFor(why)};
}

// A plugin is asked for classes of its library alone. A record with more names is forged, and could keep the host busy.
void TInstanceMerger::SkipFilledClasses(TRecordReader& dataCall) {
    for (size_t count = 0; !dataCall.IsAtEnd(); ++count) {
        if (count == fLibrary.classes.size()) throw TRecordError();
        if (const std::string name = dataCall.TakeText(); HasInstances(fContainer, name)) fInstances.Skip(name);
    }
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
    if (fRefusals.size() == kMostRefusals) Drop(eFailed, EReason::eTooManyRefused);
}

void TInstanceMerger::Conclude() {
    TPluginReport& report = fLibrary.report;
    if (report.end.state == eComplete) report.end = fDropped;
    report.messages.insert(report.messages.end(), fRefusals.begin(), fRefusals.end());
    const auto isSkipped = [this](const std::string& name) { return fInstances.IsSkipped(name); };
    for (TDataCall& call : report.dataCalls)
        call.asked.erase(std::remove_if(call.asked.begin(), call.asked.end(), isSkipped), call.asked.end());
}
