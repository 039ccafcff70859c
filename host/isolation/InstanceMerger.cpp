#include "isolation/InstanceMerger.h"

#include <algorithm>
#include <ctime>
#include <new>

#include "base/CoreLog.h"
#include "base/StatusWords.h"
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

// Of this thread, so that time in which the host itself was stopped or had no processor does not count.
TStorageRoom::TTime ProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

TStorageRoom::TTime TimeToStore(double seconds) {
    constexpr double kMost = 1e9;
    const std::chrono::duration<double> time(std::clamp(seconds, 1.0, kMost));
    return std::chrono::duration_cast<TStorageRoom::TTime>(time);
}

}  // namespace

TInstanceMerger::TInstanceMerger(TPluginLibrary& library, TPluginContainer& container, TStorageRoom& room,
                                 double seconds)
    : fLibrary(library), fContainer(container), fInstances(container), fRoom(room), fTime(TimeToStore(seconds)) {}

TInstanceMerger::EProgress TInstanceMerger::Take(std::string_view records, EPass pass, const TTimeSlice& slice) {
    BeginPass(pass);
    const size_t bytesBefore = fBytesTaken, roomBefore = fInstances.Room();
    const TStorageRoom::TTime start = ProcessorTime();
    const EProgress progress = TakeGuarded(records, slice);
    if (fBytesTaken == bytesBefore) return progress;
    fRoom.TakeBytes(roomBefore - fInstances.Room());
    SpendTime(ProcessorTime() - start);
    if (progress == EProgress::eOutOfTime && fTime.count() <= 0) Drop(eTimedOut, EReason::eNoTimeToStore);
    return fDropped.reason ? EProgress::eFinished : progress;
}

void TInstanceMerger::BeginPass(EPass pass) {
    if (fPass != pass) fInstances.SetRoom(fRoom.BytesFor(pass));
    fPass = pass;
    if (fRoom.IsStopped() && !std::exchange(fIsRunStopped, true)) LimitTime(fRoom.TimeForOne());
}

TInstanceMerger::EProgress TInstanceMerger::TakeGuarded(std::string_view records, const TTimeSlice& slice) {
    const TLogCapture refusals;  // the report gets a message for each of them
    EProgress progress = EProgress::eFinished;
    fContainer.SetActiveLibrary(&fLibrary);
    try {
        progress = TakeRecords(records, slice);
    } catch (const TRecordError&) {
        Drop(eFailed, EReason::eDeliveryDamaged);
    } catch (const TNoRoom&) {
        progress = StopForWantOfRoom();
    } catch (const std::bad_alloc&) {
        Drop(eFailed, EReason::eTooMuchDelivered);
    }
    fContainer.SetActiveLibrary(nullptr);
    return fDropped.reason ? EProgress::eFinished : progress;
}

// A plugin may have made what it says it has committed smaller than what was taken, so that the end may be passed.
TInstanceMerger::EProgress TInstanceMerger::TakeRecords(std::string_view records, const TTimeSlice& slice) {
    while (fBytesTaken < records.size() && !fDropped.reason) {
        if (slice.IsOver()) return EProgress::eOutOfTime;
        TRecordReader reader(records.substr(fBytesTaken));
        ERecord kind{};
        TRecordReader record = reader.TakeRecord(kind);
        if (kind > ERecord::eRefusedCall) throw TRecordError();
        if (kind == ERecord::eDataCall) {
            if (record.TakeNumber<uint8_t>() != 0 && fPass != EPass::eAssociations) return EProgress::eFinished;
            SkipFilledClasses(record);
        }
        if (kind == ERecord::eInstance) Store(record);
        fBytesTaken = records.size() - reader.BytesLeft();
    }
    return EProgress::eTookAll;
}

// There may be more room in the pass after the first one.
TInstanceMerger::EProgress TInstanceMerger::StopForWantOfRoom() {
    if (fPass != EPass::eSmallParts) Drop(eFailed, EReason::eTooMuchDelivered);
    return EProgress::eFinished;
}

void TInstanceMerger::SpendTime(TStorageRoom::TTime time) {
    fTime -= time;
    if (fIsRunStopped) fRoom.TakeTime(time);
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
        NoteRefusal(className, WithStatusInWords(e.what()));
    }
}

void TInstanceMerger::NoteRefusal(const std::string& className, const std::string& reason) {
    fRefusals.push_back({className, kyrLogError, "an instance that its process delivered was refused: " + reason});
    if (fRefusals.size() == kMostRefusals) Drop(eFailed, EReason::eTooManyRefused);
}

void TInstanceMerger::Conclude() {
    TPluginReport& report = fLibrary.report;
    if (report.end.state == eComplete) report.end = fDropped;
    if (report.end.reason.code == EReason::eTooMuchDelivered && report.end.reason.detail.empty())
        report.end.reason.detail = "the first " + std::to_string(fInstances.Count()) + " instances are kept";
    report.messages.insert(report.messages.end(), fRefusals.begin(), fRefusals.end());
    const auto isSkipped = [this](const std::string& name) { return fInstances.IsSkipped(name); };
    for (TDataCall& call : report.dataCalls)
        call.asked.erase(std::remove_if(call.asked.begin(), call.asked.end(), isSkipped), call.asked.end());
}
