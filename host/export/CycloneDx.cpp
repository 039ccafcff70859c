#include "export/CycloneDx.h"

#include <ctime>

#include "export/CycloneDxModel.h"
#include "kyr/TCIMDateTime.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "model/Values.h"
#include "states/HostIdentity.h"
#include "states/StateInstances.h"

namespace {

// Date-times are stored as given: a saved file may hold a month of 13.
bool DoesExist(const TCIMDateTime& moment) {
    std::tm given = {};
    given.tm_year = moment.GetYear() - 1900;
    given.tm_mon = moment.GetMonth() - 1;
    given.tm_mday = static_cast<int>(moment.GetDay());
    given.tm_hour = moment.GetHour();
    given.tm_min = moment.GetMinute();
    given.tm_sec = moment.GetSecond();
    std::tm same = given;
    timegm(&same);
    return same.tm_mon == given.tm_mon && same.tm_mday == given.tm_mday && same.tm_hour == given.tm_hour &&
           same.tm_min == given.tm_min && same.tm_sec == given.tm_sec;
}

// Empty if it was not saved.
std::string TimeOfCollection(const TContainer& container) {
    for (const TCIMInstance* collection : StatesOf(container, kCollectionClass)) {
        const TCIMProperty* const property = collection->FindProperty("DateTimeOfCollection");
        if (property == nullptr || property->GetType() != TCIMValue::TCIMType::eCIMDateTime) continue;
        const TCIMValue value = property->GetValue();
        if (value.IsNull()) continue;
        const TCIMDateTime moment = static_cast<TCIMDateTime>(value);
        if (!moment.IsNull() && !moment.IsInterval() && DoesExist(moment)) return RawText(value);
    }
    return "";
}

}  // namespace

std::vector<std::string> CycloneDxClasses() {
    std::vector<std::string> names = {kHostClass, kOperatingSystemClass, kPackageClass};
    for (const std::vector<std::string>& more : {HardwareClasses(), HardwareAssociations()})
        names.insert(names.end(), more.begin(), more.end());
    return names;
}

void WriteCycloneDx(const TContainer& container, const TCycloneDxOptions& options, TOutput& output) {
    TBom bom;
    if (!options.stable) bom.fTimestamp = TimeOfCollection(container);
    AddSoftware(container, options, bom);
    AddHardware(container, options, bom);
    AddCompleteness(container, bom);
    WriteBom(bom, output);
}
