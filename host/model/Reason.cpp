#include "model/Reason.h"

#include <stdexcept>
#include <string_view>

#include "kyr/kyrPlugin.h"

namespace {

struct TWording {
    EReason code;
    const char* text;  // with placeholders: {detail}, or {: detail}, which is empty if there is no detail
};

constexpr TWording kWordings[] = {
    {EReason::eInterrupted, "interrupted by {detail}"},
    {EReason::ePluginsIncomplete, "{detail} plugins are not complete"},
    {EReason::eNoClassCollected, "no plugin was asked for anything"},
    {EReason::eNotSelected, "left out by the choice of classes"},
    {EReason::eMarkedDontCollect, "marked DONTCOLLECT"},
    {EReason::eNoData, "its plugin has no data"},
    {EReason::eSchemaOnly, "only the schema was wanted"},
    {EReason::eNotNamed, "it is collected only if it is named (--also {class})"},
    {EReason::eFolderUnreadable, "cannot read its folder: {detail}"},
    {EReason::eCannotOpen, "cannot be opened: {detail}"},
    {EReason::eNoPluginRegistered, "it registers no plugin"},
    {EReason::eInitFailed, "its init entry failed{: detail}"},
    {EReason::eDocumentHarmful, "its document {file} {detail}"},
    {EReason::eDocumentUnreadable, "cannot read its document {file}: {detail}"},
    {EReason::eNoClassOfItsOwn, "its document brings no class of its own"},
    {EReason::eClassesTaken, "the classes go to plugin {plugin}, which its library registers before it"},
    {EReason::eDocumentTooLarge, "its document {file} is too large: {detail}"},
    {EReason::eNotStarted, "{detail}"},
    {EReason::eNoAnswer, "no answer within {detail}"},
    {EReason::eDeadlinePassed, "the deadline of {detail} had passed"},
    {EReason::eCrashed, "{detail} {place}"},
    {EReason::eExited, "it ended its process with exit status {detail} {place}"},
    {EReason::eDataCallFailed, "its data entry {detail}"},
    {EReason::eErrorLogged, "{detail}"},
    {EReason::eValuesUnreadable, "{detail}"},
    {EReason::eTooMuchDelivered, "it delivered more than there is room for{: detail}"},
    {EReason::eDeliveryDamaged, "it spoilt what it had delivered"},
    {EReason::eTooManyRefused, "too much of what it delivered was refused"},
    {EReason::eNoTimeToStore, "there was no time left to store all that it delivered"},
    {EReason::eSourceMissing, "its source {file} is missing"},
    {EReason::eNotPresent, "not present{: file}"},
    {EReason::eNoPermission, "no permission{: file}"},
    {EReason::eNotSupported, "not supported{: file}"},
    {EReason::eReadError, "read error{: file}"},
    {EReason::eNotReported, "this machine does not tell it"},
    {EReason::eNotCollected, "nothing was collected that tells it"},
    {EReason::eBadFormat, "what this machine tells is not in the expected form"},
    {EReason::eDoesNotApply, "does not apply{: file}"},
    {EReason::eInstancesLost, "{detail} instances are in the file"},
    {EReason::eFileChanged, "the file is not as it was saved{: detail}"},
    {EReason::eSandboxMissing, "it was not loaded for want of a sandbox: {detail}"},
    {EReason::eNotGranted, "it needs {detail}, which is not granted (--grant {plugin}:{detail})"},
    {EReason::eNoSuchProperty, "{class}.{property}: no such property{detail}"},
    {EReason::eWrongType, "{class}.{property}: {detail}"},
    {EReason::eBadValue, "{class}.{property}: {detail}"},
    {EReason::eNoSuchClass, "{class}: no such class{detail}"},
    {EReason::eForeignClass, "{class}: not a class of this plugin{detail}"},
    {EReason::eNoSuchKey, "reference to {class}: no key {property}{detail}"},
    {EReason::eCallRefused, "{detail}"},
    {EReason::eDocumentMistake, "{file}:{detail}"},
    {EReason::eMisplaced, "{detail}; it belongs at {file}, with its document beside it"},
    {EReason::eClassNameTaken, "class {class} is taken: {file} has it, not {detail}"},
    {EReason::eInterfaceTooNew,
     "it was built for version {detail} of the plugin interface, and this kyr has " KYR_INTERFACE_VERSION},
};

struct TMember {
    const char* name;
    std::string TReason::*text;
};

constexpr TMember kMembers[] = {{"plugin", &TReason::plugin},     {"class", &TReason::className},
                                {"property", &TReason::property}, {"file", &TReason::file},
                                {"detail", &TReason::detail},     {"place", &TReason::place}};

const std::string& MemberNamed(const TReason& reason, std::string_view name) {
    for (const TMember& member : kMembers)
        if (member.name == name) return reason.*member.text;
    throw std::logic_error("a reason has no " + std::string(name));
}

// The text for a placeholder, of which the part in braces is given.
std::string TextFor(std::string_view placeholder, const TReason& reason) {
    if (placeholder.front() != ':') return MemberNamed(reason, placeholder);
    const std::string& text = MemberNamed(reason, placeholder.substr(2));
    return text.empty() ? "" : ": " + text;
}

std::string Fill(std::string_view wording, const TReason& reason) {
    std::string text;
    for (size_t open = wording.find('{'); open != std::string_view::npos; open = wording.find('{')) {
        const size_t close = wording.find('}', open);
        text.append(wording.substr(0, open)).append(TextFor(wording.substr(open + 1, close - open - 1), reason));
        wording.remove_prefix(close + 1);
    }
    return text.append(wording);
}

const char* WordingOf(EReason code) {
    for (const TWording& wording : kWordings)
        if (wording.code == code) return wording.text;
    return "";
}

}  // namespace

std::string SentenceOf(const TReason& reason) {
    const std::string_view wording = WordingOf(reason.code);
    const std::string text = Fill(wording, reason);
    const bool isStopped = !reason.place.empty() && wording.find("{place}") == std::string_view::npos;
    return isStopped ? text + ", stopped " + reason.place : text;
}
