#include "states/PluginReport.h"

#include <algorithm>
#include <iterator>

#include "base/StatusWords.h"
#include "base/Text.h"
#include "kyr/kyrPlugin.h"
#include "states/InterfaceVersion.h"

namespace {

constexpr size_t kLongestMessage = 4096;
constexpr size_t kLongestWord = 200;  // of a refused call

// More would hold up whoever looks for the messages of a class, and leave a saved file no room for others.
constexpr size_t kMostMessageBytes = size_t{256} << 10;
constexpr size_t kBesideText = 64;

// How the lines begin that the core logs when it refuses a call.
constexpr const char* kRefusals[] = {"SetValue: ",
                                     "AddProperty: CIM class ",
                                     "kyrAddProperty: CIM class ",
                                     "kyrAddProperty: NULL ",
                                     "kyrAddProperty: no current instance",
                                     "kyrAddStringProperty: NULL ",
                                     "kyrAddReferenceProperty: NULL ",
                                     "kyrAddDateTimeProperty: NULL ",
                                     "kyrAddArrayProperty: NULL ",
                                     "kyrAddClass: GetClass(",
                                     "kyrAddClass: Allocate instance ",
                                     "ERROR: Attempting to create array ",
                                     "Declaration type: ",
                                     "AddKeyValue() ",
                                     "SetClassName() ",
                                     "SetPath() ",
                                     "GetClass() called before "};

bool IsRefusal(const TMessage& message) {
    const auto begins = [&](const char* start) { return StartsWith(message.text, start); };
    return message.core && message.severity == kyrLogError &&
           std::any_of(std::begin(kRefusals), std::end(kRefusals), begins);
}

// A plugin may try the others, and go on without.
bool IsError(const TRefusedCall& call) { return StartsWith(call.call, "kyrAdd") || StartsWith(call.call, "kyrArray"); }

}  // namespace

bool TMessage::IsOfReference() const {
    return call && (StartsWith(call->call, "kyrReferenceAdd") || StartsWith(call->call, "kyrSetReference"));
}

// The core logs the failure of a data call right after it. TDataCall::failure has it already, so that line is dropped.
void TPluginReport::AddLogLine(const TLogLine& line) {
    const bool repeatsFailure = line.core && !dataCalls.empty() && dataCalls.back().failure;
    if (line.severity > kyrLogWarning || repeatsFailure) return;
    const std::string text = CutText(line.core ? WithStatusInWords(line.text) : line.text, kLongestMessage);
    if (TakeRoom(text)) messages.push_back({"", line.severity, text, line.core});
}

bool TPluginReport::TakeRoom(const std::string& text) {
    messageBytes += text.size() + kBesideText;
    if (messageBytes <= kMostMessageBytes) return true;
    end = {eFailed, ReasonFor(EReason::eTooMuchDelivered, "its log is cut off")};
    return false;
}

void TPluginReport::AddRefusedCall(TRefusedCall call) {
    bool isLogged = false;
    for (; !messages.empty() && IsRefusal(messages.back()); isLogged = true) messages.pop_back();
    TMessage message{"", kyrLogError, "", true};
    for (std::string TRefusedCall::*word :
         {&TRefusedCall::call, &TRefusedCall::className, &TRefusedCall::name, &TRefusedCall::given}) {
        call.*word = CutText(call.*word, kLongestWord);
        message.text += call.*word + " ";
    }
    message.call = call;
    if (!dataCalls.empty()) dataCalls.back().lastRefused = message;
    if ((isLogged || IsError(call)) && TakeRoom(message.text)) messages.push_back(message);
}

const TPluginInfo* TPluginReport::FindOwner() const {
    const auto usesDocument = [](const TPluginInfo& plugin) {
        return plugin.initialised && (plugin.type == kyrPluginDataCollector || plugin.type == kyrPluginDocumentOnly);
    };
    const auto found = std::find_if(plugins.begin(), plugins.end(), usesDocument);
    return found == plugins.end() ? nullptr : &*found;
}

bool TPluginReport::IsLoaded() const {
    const TPluginInfo* const owner = FindOwner();
    return owner != nullptr && loadFailure.empty() && FitOf(owner->interfaceVersion) != EFit::eNewerMajor;
}

const TDataCall* TPluginReport::FindDataCall(const std::string& className) const {
    for (const TDataCall& call : dataCalls)
        if (std::find(call.asked.begin(), call.asked.end(), className) != call.asked.end()) return &call;
    return nullptr;
}

std::string TPluginReport::FirstError() const {
    for (const TMessage& message : messages)
        if (message.severity == kyrLogError) return message.text;
    return "";
}
