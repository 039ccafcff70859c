#include "render/Summary.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "base/Text.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/Associations.h"
#include "model/ClassNames.h"
#include "model/Provenance.h"
#include "model/ReadingOrder.h"
#include "model/SpokenNames.h"
#include "render/SummaryAccounts.h"
#include "render/SummaryMissing.h"
#include "render/SummaryPieces.h"
#include "render/SummarySockets.h"
#include "render/SummaryStorage.h"
#include "render/SummarySystem.h"
#include "states/StateInstances.h"

namespace {

using TTexts = std::vector<std::string>;

constexpr size_t kWidthWithoutTerminal = 80;
constexpr size_t kColumn = 11;  // where the texts stand behind their labels
constexpr size_t kMostContents = 5;
constexpr size_t kMostAddresses = 3;
constexpr size_t kMostServers = 3;
constexpr size_t kMostNames = 6;

constexpr const char* kMemoryArray = "MOLTA_MemoryArray";
constexpr const char* kDiskDrive = "MOLTA_DiskDrive";
constexpr const char* kSecurityClass = "MOLTA_SystemSecurity";
constexpr const char* kAdapterMember = "MOLTA_NetworkAdapterMember";
constexpr const char* kDisplayClass = "MOLTA_DisplayController";
constexpr const char* kMonitor = "MOLTA_Monitor";
constexpr const char* kManagementController = "MOLTA_ManagementController";
constexpr const char* kDnsSettings = "MOLTA_DNSSettings";
constexpr const char* kDiskHealth = "MOLTA_DiskHealth";
constexpr uint64_t kSystemMemory = 3;       // of MOLTA_MemoryArray.Use
constexpr uint64_t kLoopback = 772;         // of MOLTA_NetworkAdapter.LinkTechnology
constexpr uint64_t kCLibrary = 1;           // of MOLTA_DNSSettings.Program
constexpr uint64_t kDisplayController = 3;  // of MOLTA_PCIDevice.ClassCode
constexpr uint64_t kWarning = 2;            // of MOLTA_DiskHealth.SelfAssessment
constexpr uint64_t kFailing = 3;

// These add to the line of an instance what lists and other instances say.

std::string AddSlots(const TCIMInstance& memory, const TStorageContents&) {
    std::vector<TCIMInstance*> arrays = InstancesOf(*memory.GetContainer(), kMemoryArray);
    const auto isOther = [](const TCIMInstance* array) { return SummaryNumber(*array, "Use") != kSystemMemory; };
    arrays.erase(std::remove_if(arrays.begin(), arrays.end(), isOther), arrays.end());
    if (arrays.empty()) return "";
    uint64_t slots = 0;
    for (const TCIMInstance* array : arrays) slots += SummaryNumber(*array, "Slots");
    const std::string used = SummaryText(memory, {{"InstalledModules", "", " of ", nullptr, ESummaryForm::eNumber}}),
                      most = SummarySum(arrays, "MaximumCapacity"),
                      correction = SummaryValue(*arrays.front(), "ErrorCorrection");
    std::string text = slots == 0 ? "; no number of slots known" : "; " + used + std::to_string(slots) + " slots";
    if (slots != 0 && !used.empty()) text += " used";
    if (!most.empty()) text += ", at most " + most;
    return correction.empty() ? text : text + ", error correction: " + correction;
}

// Several paths may lead to one disk. Then it is told with the first of them what it is.
std::string OtherPathText(const TCIMInstance& disk) {
    const std::string name = SummaryValue(disk, "WWN");
    if (name.empty()) return "";
    for (const TCIMInstance* other : InNaturalOrder(InstancesOf(*disk.GetContainer(), kDiskDrive))) {
        if (other == &disk) break;
        if (SummaryValue(*other, "WWN") == name) return ", the same disk as " + SummaryValue(*other, "DeviceID");
    }
    return "";
}

// ", 3 % worn", and whether it warns; nothing of a disk that was not asked.
std::string HealthText(const TCIMInstance& disk) {
    for (const TCIMInstance* health : InstancesOf(*disk.GetContainer(), kDiskHealth)) {
        if (SummaryValue(*health, "InstanceID") != SummaryValue(disk, "DeviceID")) continue;
        const std::string worn =
            SummaryText(*health, {{"PercentageUsed", "", " % worn", nullptr, ESummaryForm::eNumber}});
        const uint64_t assessment = SummaryNumber(*health, "SelfAssessment");
        const char* const state = assessment == kFailing   ? ", FAILING"
                                  : assessment == kWarning ? ", with a warning"
                                                           : "";
        return (worn.empty() ? "" : ", " + worn) + state;
    }
    return "";
}

std::string AddContents(const TCIMInstance& disk, const TStorageContents& contents) {
    const std::string text = FoldedTexts(contents.ContentsOf(disk), kMostContents);
    return OtherPathText(disk) + HealthText(disk) + (text.empty() ? "" : ": " + text);
}

TTexts VisibleTexts(const TCIMInstance& instance, const char* property) {
    TTexts texts = TextsOf(instance, property);
    for (std::string& text : texts) text = VisibleText(text);
    return texts;
}

// " of eno1, eno2" behind the mode of a bond.
std::string MembersOfBond(const TCIMInstance& bond) {
    if (SummaryValue(bond, "BondMode").empty()) return "";
    TTexts names;
    for (const TCIMInstance* membership : InstancesOf(*bond.GetContainer(), kAdapterMember)) {
        const TCIMInstance *group = nullptr, *part = nullptr;
        for (const TAssociationEnd& end : EndsOf(*membership))
            (IsSameName(end.role, "GroupComponent") ? group : part) = end.instance;
        if (group == &bond && part != nullptr) names.push_back(SummaryValue(*part, "DeviceID"));
    }
    return names.empty() ? "" : " of " + FoldedTexts(names, kMostNames);
}

// The state of the link is not saved where only what stays the same is.
std::string AddAddresses(const TCIMInstance& adapter, const TStorageContents&) {
    const bool isDisabled = SummaryValue(adapter, "LinkState").empty() && HasBoolean(adapter, "Enabled", false);
    const TTexts addresses = VisibleTexts(adapter, "IPAddresses");
    const bool isKnown = TProvenance(adapter).AbsenceOf("IPAddresses").empty();
    return MembersOfBond(adapter) + (isDisabled ? ", disabled" : "") +
           (!addresses.empty() ? ": " + FoldedTexts(addresses, kMostAddresses)
            : isKnown          ? ", no address"
                               : ", no address known");
}

// Without those that are ignored, which come after others.
TTexts ServersAsked(const TCIMInstance& settings) {
    TTexts servers = VisibleTexts(settings, "DNSServerAddresses");
    for (const std::string& ignored : VisibleTexts(settings, "IgnoredServerAddresses")) {
        const auto last = std::find(servers.rbegin(), servers.rend(), ignored);
        if (last != servers.rend()) servers.erase(std::next(last).base());
    }
    return servers;
}

// The servers that the C library asks, and those that a program on this machine asks for it.
std::string AddServers(const TCIMInstance& settings, const TStorageContents&) {
    const TTexts servers = ServersAsked(settings), domains = VisibleTexts(settings, "DNSSuffixesToAppend");
    std::string text = servers.empty() ? "no server known" : FoldedTexts(servers, kMostServers);
    if (HasBoolean(settings, "LocalServer", true)) text += " on this machine";
    if (SummaryNumber(settings, "Program") != kCLibrary) text += ", asked by " + SummaryValue(settings, "Program");
    return domains.empty() ? text : text + "; search " + FoldedTexts(domains, kMostNames);
}

std::string AddSecurity(const TCIMInstance& security, const TStorageContents&) { return SecurityText(security); }

// Which instances have a line of their own.

bool IsDisplayController(const TCIMInstance& device) {
    return SummaryNumber(device, "ClassCode") == kDisplayController;
}

bool IsOfComputer(const TCIMInstance& settings) { return SummaryValue(settings, "InterfaceName").empty(); }

bool IsAdapterOfInterest(const TCIMInstance& adapter) {
    if (SummaryNumber(adapter, "LinkTechnology") == kLoopback) return false;
    return !HasBoolean(adapter, "Virtual", true) || !TextsOf(adapter, "IPAddresses").empty();
}

/// A part of the summary: the instances of a class, with a line for each that is wanted. Lines that are equal become
/// one, and what exceeds the most lines is counted.
struct TSection {
    const char* label;
    const char* className;
    std::vector<TSummaryPiece> pieces;
    std::string (*add)(const TCIMInstance&, const TStorageContents&) = nullptr;
    bool (*isWanted)(const TCIMInstance&) = nullptr;
    const char* others =
        nullptr;  ///< what stands before the names of instances that are not wanted; null: nothing does
    size_t mostLines = 1;
    bool isOptional = false;                      ///< no line tells that there are none
    TTexts (*tell)(const TContainer&) = nullptr;  ///< makes the lines of all instances together
    const char* otherwise = nullptr;              ///< a class: where it was asked for, this section is left out
};

const TSection kSections[] = {
    {"Machine",
     "MOLTA_ComputerSystem",
     {{"Manufacturer"}, {"ProductName", " ", "", "product name"}, {"SerialNumber", ", serial ", "", "serial number"}}},
    {"Host",
     "MOLTA_ComputerSystem",
     {{"Name", "", "", "host name"},
      {"Hypervisor", ", on ", "", "hypervisor"},
      {"Container", ", in container ", "", "container"},
      {"ContainerMemoryLimit", " with at most ", " of memory"},
      {"ContainerProcessorLimit", ", the time of "}}},
    {"Firmware",
     "MOLTA_SystemBIOSElement",
     {{"Manufacturer"},
      {"Version", " ", "", "firmware version"},
      {"ReleaseDate", " of ", "", nullptr, ESummaryForm::eDay}}},
    {"System",
     "MOLTA_OperatingSystem",
     {{"Caption", "", "", "name of the system"},
      {"PointRelease", ", release ", "", "point release"},
      {"KernelRelease", ", kernel ", "", "kernel release"},
      {"Architecture", ", "},
      {"BootFirmware", ", started by ", "", "boot firmware"}}},
    {"Running",
     "MOLTA_OperatingSystem",
     {{"SystemUpTime", "for "}, {"LastBootUpTime", ", since ", "", "time of boot"}}},
    {"Security", kSecurityClass, {}, AddSecurity},
    {"Processor",
     "MOLTA_Processor",
     {{"ModelName", "", "", "model"},
      {"NumberOfEnabledCores", ": ", "", "number of cores", ESummaryForm::eTotal},
      {"NumberOfEnabledThreads", ", ", "", "number of threads", ESummaryForm::eTotal},
      {"MinClockSpeed", ", ", "", nullptr, ESummaryForm::eNumber},
      {"MaxClockSpeed", " to ", "", "clock range"}},
     nullptr,
     nullptr,
     nullptr,
     3},
    {"Memory",
     "MOLTA_SystemMemory",
     {{"TotalSize", "", " usable", "usable size"},
      {"SwapTotalSize", ", ", " of swap", "swap"},
      {"InstalledSize", "; ", " installed", "installed size"}},
     AddSlots},
    {"Disk",
     kDiskDrive,
     {{"DeviceID"},
      {"Size", " ", "", "size"},
      {"Model", " ", "", "model"},
      {"SerialNumber", ", serial ", "", "serial number"},
      {"BusType", ", "},
      {"Bay", ", bay "}},
     AddContents,
     nullptr,
     nullptr,
     5},
    {"Network",
     "MOLTA_NetworkAdapter",
     {{"Caption"}, {"LinkState", " "}, {"Speed", ", "}, {"BondMode", ", "}},
     AddAddresses,
     IsAdapterOfInterest,
     "also ",
     5},
    {"DNS", kDnsSettings, {}, AddServers, IsOfComputer, nullptr, 2},
    {"Graphics",
     kDisplayClass,
     {{"Caption"}, {"VideoMemory", ", "}, {"Driver", ", driver ", "", "driver"}},
     nullptr,
     nullptr,
     nullptr,
     2},
    // Of files that earlier versions saved.
    {"Graphics",
     "MOLTA_PCIDevice",
     {{"Caption"}, {"Driver", ", driver ", "", "driver"}},
     nullptr,
     IsDisplayController,
     nullptr,
     2,
     false,
     nullptr,
     kDisplayClass},
    {"Monitor",
     kMonitor,
     {{"Caption"},
      {"HorizontalResolution", ", ", "", nullptr, ESummaryForm::eNumber},
      {"VerticalResolution", " x ", "", nullptr, ESummaryForm::eNumber},
      {"Diagonal", ", ", " in", nullptr, ESummaryForm::eNumber},
      {"SerialNumber", ", serial "}},
     nullptr,
     nullptr,
     nullptr,
     3,
     true},
    {"Management",
     kManagementController,
     {{"Caption"}, {"InterfaceType", " with ", " interface"}, {"IPMIVersion", ", IPMI "}},
     nullptr,
     nullptr,
     nullptr,
     2,
     true},
    {"Listening", kListeningSocketClass, {}, nullptr, nullptr, nullptr, 1, false, ListeningTexts},
    {"Accounts", kAccountClass, {}, nullptr, nullptr, nullptr, 1, false, AccountsTexts},
    {"Guests", kVirtualMachineClass, {}, nullptr, nullptr, nullptr, 1, true, GuestsTexts},
};

using TClassStates = std::unordered_map<std::string, EState>;

// What became of the classes that the collection knows.
TClassStates ClassStatesOf(const TContainer& container) {
    TClassStates states;
    for (const TCIMInstance* state : StatesOf(container, kCollectedClassClass))
        states.emplace(TextOf(*state, "Name"), OutcomeOf(*state).state);
    return states;
}

EState StateOf(const TClassStates& states, const std::string& className) {
    const auto found = states.find(className);
    return found == states.end() ? eNotAsked : found->second;
}

/// A line of a section, and how many instances have it.
struct TCountedLine {
    std::string text;
    const TCIMInstance* first;
    size_t count = 1;
};

class TSectionText {
public:
    TSectionText(const TSection& section, const TContainer& container, const TStorageContents& contents,
                 const TClassStates& states)
        : fSection(section), fContents(contents) {
        if (section.tell != nullptr)
            fTold = section.tell(container);
        else
            for (const TCIMInstance* instance : InNaturalOrder(InstancesOf(container, section.className)))
                Add(*instance);
        fIsComplete = StateOf(states, section.className) == eComplete;
    }

    TTexts Lines() const {
        TTexts lines = fTold;
        for (const TCountedLine& line : fCounted)
            lines.push_back(line.count == 1 ? line.text
                                            : std::to_string(line.count) + " x " + TextFor(*line.first, line.count));
        if (fLeftOut != 0)
            lines.push_back("and " + std::to_string(fLeftOut) + " more; see show " + SpokenNameOf(fSection.className));
        if (!fOthers.empty()) lines.push_back(fSection.others + FoldedTexts(fOthers, kMostNames));
        if (lines.empty() && !fSection.isOptional)
            lines.emplace_back(fIsComplete ? "none found" : "not known, as said below");
        return lines;
    }

private:
    void Add(const TCIMInstance& instance) {
        if (fSection.isWanted != nullptr && !fSection.isWanted(instance)) {
            if (fSection.others != nullptr) fOthers.push_back(SummaryValue(instance, "Caption"));
            return;
        }
        const bool hasRoom = fCounted.size() < fSection.mostLines;
        // Lines to which something is added are all different. Where there is no room for them, none need be made.
        const std::string text = hasRoom || fSection.add == nullptr ? TextFor(instance) : "";
        const auto same = std::find_if(fCounted.begin(), fCounted.end(),
                                       [&text](const TCountedLine& line) { return line.text == text; });
        if (same != fCounted.end())
            ++same->count;
        else
            hasRoom ? fCounted.push_back({text, &instance}) : (void)++fLeftOut;
    }

    std::string TextFor(const TCIMInstance& instance, size_t count = 1) const {
        std::string text = SummaryText(instance, fSection.pieces, count);
        if (fSection.add != nullptr) text += fSection.add(instance, fContents);
        return text.empty() ? "nothing is known of it" : text;
    }

    const TSection& fSection;
    const TStorageContents& fContents;
    std::vector<TCountedLine> fCounted;
    TTexts fTold;
    TTexts fOthers;  // the names of instances that are not wanted
    size_t fLeftOut = 0;
    bool fIsComplete = false;
};

// Classes that files of earlier versions lack, or that are asked for only if that was granted. Nothing is said of them
// then.
constexpr const char* kMayBeLeftOut[] = {kSecurityClass,        kTpmClass,
                                         kDiskHealth,           kDnsSettings,
                                         kDisplayClass,         kMonitor,
                                         kManagementController, kListeningSocketClass,
                                         kAccountClass,         kVirtualMachineClass,
                                         kHostedContainerClass};

bool IsAskedFor(const TClassStates& states, const std::string& name) {
    if (std::find(std::begin(kMayBeLeftOut), std::end(kMayBeLeftOut), name) == std::end(kMayBeLeftOut)) return true;
    return StateOf(states, name) != eNotAsked;
}

bool IsTold(const TSection& section, const TClassStates& states) {
    if (section.otherwise != nullptr && IsAskedFor(states, section.otherwise)) return false;
    return IsAskedFor(states, section.className);
}

void PrintLines(std::string label, const TTexts& lines, TOutput& output) {
    const size_t columns = output.Width() == TOutput::kUnlimited ? kWidthWithoutTerminal : TOutput::kUnlimited;
    for (const std::string& line : lines) {
        label.resize(kColumn, ' ');
        output.WriteWrapped(line, label, columns);
        label.clear();
    }
}

}  // namespace

std::vector<std::string> SummaryClasses() {
    std::vector<std::string> names;
    for (const TSection& section : kSections)
        if (section.otherwise == nullptr && (names.empty() || names.back() != section.className))
            names.emplace_back(section.className);
    for (const char* name :
         {kTpmClass, kHostedContainerClass, kMemoryArray, "MOLTA_DiskPartition", "MOLTA_StorageVolume",
          "MOLTA_FileSystem", "MOLTA_Mount", "MOLTA_SwapArea", "MOLTA_IPAddress", kAdapterMember})
        names.emplace_back(name);
    names.insert(names.end(), std::begin(kStorageAssociations), std::end(kStorageAssociations));
    names.emplace_back(kDiskHealth);
    return names;
}

void PrintSummary(const TContainer& container, TOutput& output) {
    const TStorageContents contents(container);
    const TClassStates states = ClassStatesOf(container);
    for (const TSection& section : kSections)
        if (IsTold(section, states))
            PrintLines(section.label, TSectionText(section, container, contents, states).Lines(), output);
    TTexts classes = SummaryClasses();
    const auto isNot = [&states](const std::string& name) { return !IsAskedFor(states, name); };
    classes.erase(std::remove_if(classes.begin(), classes.end(), isNot), classes.end());
    const TTexts missing = MissingTexts(container, classes);
    PrintLines("Missing", missing.empty() ? TTexts{"nothing of the above"} : missing, output);
}
