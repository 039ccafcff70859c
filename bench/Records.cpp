#include "Records.h"

#include <string>
#include <vector>

#include "Schema.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"

namespace {

std::vector<TField> RecordFields() {
    using TType = TCIMValue::TCIMType;
    return {
        {"Id", NullOf(TType::eCIMString)},
        {"Caption", NullOf(TType::eCIMString)},
        {"Manufacturer", NullOf(TType::eCIMString)},
        {"Location", NullOf(TType::eCIMString)},
        {"Enabled", NullOf(TType::eCIMBoolean)},
        {"Removable", NullOf(TType::eCIMBoolean)},
        {"HealthState", NullOf(TType::eCIMUint8)},
        {"Temperature", NullOf(TType::eCIMSint8)},
        {"OperationalState", NullOf(TType::eCIMUint16)},
        {"Offset", NullOf(TType::eCIMSint16)},
        {"BlockSize", NullOf(TType::eCIMUint32)},
        {"Blocks", NullOf(TType::eCIMUint32)},
        {"Drift", NullOf(TType::eCIMSint32)},
        {"Capacity", NullOf(TType::eCIMUint64)},
        {"Free", NullOf(TType::eCIMUint64)},
        {"Balance", NullOf(TType::eCIMSint64)},
        {"Voltage", NullOf(TType::eCIMReal32)},
        {"Frequency", NullOf(TType::eCIMReal64)},
        {"InstallDate", NullOf(TType::eCIMDateTime)},
        {"Names", NullOf(static_cast<TType::ECIMType>(TType::eCIMString | TType::eCIMArrayFlag))},
    };
}

}  // namespace

TRecords::TRecords() : fHandle(&fContainer, nullptr) {
    DeclareClass(fContainer, "Bench_Record", RecordFields(), 1);
    kyrNewCIMDateTime(&fDate);
    kyrSetDateTimeString(fDate, "20041231235959.000000+060");
    kyrNewCIMValueArray(&fArray);
    kyrArrayAddString(fArray, "first");
    kyrArrayAddString(fArray, "second");
}

TRecords::~TRecords() {
    kyrDeleteCIMDateTime(fDate);
    kyrDeleteCIMValueArray(fArray);
    if (fHandle.fCurrentInstance) fHandle.fCurrentInstance->AddToContainer();
}

void TRecords::Add(unsigned count) {
    for (unsigned i = 0; i < count; ++i) AddOne(fCount++);
}

void TRecords::AddOne(unsigned number) {
    kyrAddClass(&fHandle, "Bench_Record");
    kyrAddStringProperty(&fHandle, "Id", ("id-" + std::to_string(number)).c_str());
    kyrAddStringProperty(&fHandle, "Caption", "Hard disk drive");
    kyrAddStringProperty(&fHandle, "Manufacturer", "Acme");
    kyrAddStringProperty(&fHandle, "Location", "Enclosure 1, bay 7");
    kyrAddBooleanProperty(&fHandle, "Enabled", 1);
    kyrAddBooleanProperty(&fHandle, "Removable", 0);
    kyrAddUint8Property(&fHandle, "HealthState", number & 127);
    kyrAddSint8Property(&fHandle, "Temperature", -12);
    kyrAddUint16Property(&fHandle, "OperationalState", number & 32767);
    kyrAddSint16Property(&fHandle, "Offset", -1234);
    kyrAddUint32Property(&fHandle, "BlockSize", 4096);
    kyrAddUint32Property(&fHandle, "Blocks", number);
    kyrAddSint32Property(&fHandle, "Drift", -123456);
    kyrAddUint64Property(&fHandle, "Capacity", 4000787030016);
    kyrAddUint64Property(&fHandle, "Free", 987654321);
    kyrAddSint64Property(&fHandle, "Balance", -9876543210);
    kyrAddProperty(&fHandle, "Voltage", "12.25");
    kyrAddProperty(&fHandle, "Frequency", "1333.5");
    kyrAddDateTimeProperty(&fHandle, "InstallDate", fDate);
    kyrAddArrayProperty(&fHandle, "Names", fArray);
}

void TRecords::SetOneProperty(unsigned times) {
    for (unsigned i = 0; i < times; ++i) kyrAddUint32Property(&fHandle, "Blocks", i);
}

std::size_t TRecords::DisplayAll() const {
    std::size_t length = 0;
    for (const TCIMInstance* instance : fContainer.GetClass("Bench_Record")->EnumerateInstances(false)) {
        for (const TCIMProperty* property : instance->EnumerateProperties()) length += property->ToString().size();
    }
    return length;
}
