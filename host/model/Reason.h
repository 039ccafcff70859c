#ifndef KYR_HOST_MODEL_REASON_H
#define KYR_HOST_MODEL_REASON_H

#include <cstdint>
#include <string>
#include <utility>

/// Why something is not complete, or has no value: the numbers of the property ReasonCode in schema/collection.xml.
/// Saved files hold these numbers, so the meaning of a number never changes.
enum class EReason : uint16_t {
    eNone = 0,
    // Of a collection as a whole
    eInterrupted = 1,
    ePluginsIncomplete = 2,
    eNoClassCollected = 3,
    // Left out on purpose
    eNotSelected = 10,
    eMarkedDontCollect = 11,
    eNoData = 12,
    eSchemaOnly = 13,
    eNotNamed = 14,
    // A plugin's library and its document
    eFolderUnreadable = 20,
    eCannotOpen = 21,
    eNoPluginRegistered = 22,
    eInitFailed = 23,
    eDocumentHarmful = 24,
    eDocumentUnreadable = 25,
    eNoClassOfItsOwn = 26,
    eClassesTaken = 27,
    eDocumentTooLarge = 28,
    // A plugin's process
    eNotStarted = 30,
    eNoAnswer = 31,
    eDeadlinePassed = 32,
    eCrashed = 33,
    eExited = 34,
    // What a plugin delivered
    eDataCallFailed = 40,
    eErrorLogged = 41,
    eValuesUnreadable = 42,
    eTooMuchDelivered = 43,
    eDeliveryDamaged = 44,
    eTooManyRefused = 45,
    eNoTimeToStore = 46,
    eSourceMissing = 47,
    // A single value
    eNotPresent = 50,
    eNoPermission = 51,
    eNotSupported = 52,
    eReadError = 53,
    eNotReported = 54,
    eNotCollected = 55,
    eBadFormat = 56,
    eDoesNotApply = 57,
    // A saved file
    eInstancesLost = 60,
    eFileChanged = 61,
    // The sandbox of a plugin's process
    eSandboxMissing = 70,
    eNotGranted = 71,
    // A call of a plugin that was refused
    eNoSuchProperty = 80,
    eWrongType = 81,
    eBadValue = 82,
    eNoSuchClass = 83,
    eForeignClass = 84,
    eNoSuchKey = 85,
    eCallRefused = 86,
    // More of a plugin's library and its document
    eDocumentMistake = 87,
    eMisplaced = 88,
    eClassNameTaken = 89,
    eInterfaceTooNew = 90,
};

/// A reason as data. Which members are set depends on the code. SentenceOf makes the sentence that is printed.
struct TReason {
    EReason code = EReason::eNone;
    std::string plugin = {};
    std::string className = {};
    std::string property = {};
    std::string file = {};    ///< a document, or the source of a value
    std::string detail = {};  ///< what the code does not say: a signal, a number, a line of the log
    std::string place = {};   ///< what a plugin was doing: "in its data entry at class X"

    explicit operator bool() const { return code != EReason::eNone; }
};

/// A reason that needs nothing but its code and a detail.
inline TReason ReasonFor(EReason code, std::string detail = "") {
    TReason reason;
    reason.code = code;
    reason.detail = std::move(detail);
    return reason;
}

/// The English sentence for the reason; empty for eNone. It is only for people: programs use the code, so that the
/// wording can change.
std::string SentenceOf(const TReason& reason);

#endif
