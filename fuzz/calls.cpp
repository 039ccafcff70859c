// The C calls that a plugin makes in one data callback. A byte selects the call, and its parameters follow: a byte
// selects a name or one of three arrays, references or date-times, numbers have eight bytes, and texts are preceded by
// their length. Objects that were not created are null. Null is passed only for parameters that a call checks.
#include <algorithm>
#include <cstdint>
#include <tuple>

#include "cwrappers/kyriIOHandle.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMValue.h"
#include "kyr/TContainer.h"
#include "kyr/kyrPlugin.h"
#include "support/CallsSchema.h"
#include "support/ContainerWalk.h"
#include "support/FuzzSupport.h"

namespace {

/// Limits nesting: references are copied deeply, so that using one in two keys of the next doubles the size each time.
constexpr int kMaxNestings = 16;

/// One data callback, with the objects that the plugin has created in it.
class TSession {
public:
    TSession() = default;
    TSession(const TSession&) = delete;
    TSession& operator=(const TSession&) = delete;
    ~TSession();

    TContainer& fContainer = CallsContainer();
    kyriIOHandle fHandle{&fContainer, nullptr};
    kyrCIMValueArray fArrays[3] = {};
    kyrCIMReference fReferences[3] = {};
    kyrCIMDateTime fDateTimes[3] = {};
    int fNestings = 0;
};

template <typename TObject, std::size_t kSize>
void DeleteAll(TObject* (&objects)[kSize], kyrStatusCode (*remove)(TObject*)) {
    for (TObject* object : objects)
        Require(remove(object) == (object != nullptr ? kyrStatusOK : kyrStatusFail), "what is there can be deleted");
}

TSession::~TSession() {
    DeleteAll(fArrays, kyrDeleteCIMValueArray);
    DeleteAll(fReferences, kyrDeleteCIMReference);
    DeleteAll(fDateTimes, kyrDeleteCIMDateTime);
    EmptyCallsContainer();
}

/// A call that must not raise.
template <typename TCall>
kyrStatusCode Call(TCall&& call) {
    const kyrStatusCode status = call();
    Require(status >= kyrStatusOK && status < kyrStatusEnd, "a call returns a status");
    return status;
}

/// A call that may raise exceptions of the core.
template <typename TCall>
kyrStatusCode CallThatRaises(TCall&& call) {
    kyrStatusCode status = kyrStatusOK;
    const kyrStatusCode raised = StatusOf([&] { status = Call(call); });
    return raised != kyrStatusOK ? raised : status;
}

/// Deletes the object in the slot and creates a new one.
template <typename TObject, typename TMake>
void Renew(TObject*& place, kyrStatusCode (*remove)(TObject*), TMake&& make) {
    if (place != nullptr) remove(place);
    place = nullptr;
    Require(Call([&] { return make(&place); }) == kyrStatusOK && place != nullptr, "what is made is there");
}

/// Runs a call that sets a property; `set` gets the name.
template <typename TSet>
void Add(TSession& session, TByteReader& input, TSet&& set) {
    const char* const name = input.Pick(kPropertyNames);
    if (CallThatRaises([&] { return set(name); }) != kyrStatusOK) return;
    const TCIMProperty& property = *session.fHandle.fCurrentInstance->GetProperty(name);
    Require(!property.GetPropagated() && !property.GetValue().IsNull(), "a property that was set has a value");
    Require(property.GetValue().GetType() == property.GetType(), "a value has the type that is declared for it");
}

// Readers of the parameter types. A text lives as long as its call.
struct TText {
    std::string text;
    operator const char*() const { return text.c_str(); }
};

kyrIOHandle Handle(TSession& session, TByteReader&) { return &session.fHandle; }
kyrCIMValueArray Array(TSession& session, TByteReader& input) { return input.Pick(session.fArrays); }
kyrCIMReference Reference(TSession& session, TByteReader& input) { return input.Pick(session.fReferences); }
kyrCIMDateTime Time(TSession& session, TByteReader& input) { return input.Pick(session.fDateTimes); }
const char* ClassName(TSession&, TByteReader& input) { return input.Pick(kClassNames); }
const char* Key(TSession&, TByteReader& input) { return input.Pick(kPropertyNames); }
TText Text(TSession&, TByteReader& input) { return {input.Text()}; }
std::uint64_t Number(TSession&, TByteReader& input) { return input.Number(); }

/// Reads the parameters in order and makes the call.
template <auto kCall, auto... kRead>
kyrStatusCode Pass(TSession& session, TByteReader& input) {
    const std::tuple parameters{kRead(session, input)...};
    return Call([&] { return std::apply(kCall, parameters); });
}

template <auto kCall, auto... kRead>
void Run(TSession& session, TByteReader& input) {
    Pass<kCall, kRead...>(session, input);
}

template <auto kCall, auto kRead>
void Set(TSession& session, TByteReader& input) {
    const auto value = kRead(session, input);
    Add(session, input, [&](const char* name) { return kCall(&session.fHandle, name, value); });
}

template <auto kCall, auto kRead>
void Append(TSession& session, TByteReader& input) {
    kyrCIMValueArray const array = Array(session, input);
    const auto value = kRead(session, input);
    const kyrStatusCode status = Call([&] { return kCall(array, value); });
    Require(status == (array != nullptr ? kyrStatusOK : kyrStatusFail), "any array takes any value");
}

template <auto kCall, auto kRead>
void Bind(TSession& session, TByteReader& input) {
    Run<kCall, Reference, Key, kRead>(session, input);
}

// The calls for the types of numbers, in the order of the header; each cuts the number to its width.
#define NUMBER_CALLS(Operation, Prefix, Suffix)                                               \
    Operation<Prefix##Boolean##Suffix, Number>, Operation<Prefix##Uint8##Suffix, Number>,     \
        Operation<Prefix##Sint8##Suffix, Number>, Operation<Prefix##Uint16##Suffix, Number>,  \
        Operation<Prefix##Sint16##Suffix, Number>, Operation<Prefix##Uint32##Suffix, Number>, \
        Operation<Prefix##Sint32##Suffix, Number>, Operation<Prefix##Uint64##Suffix, Number>, \
        Operation<Prefix##Sint64##Suffix, Number>

using TOperation = void (*)(TSession&, TByteReader&);

// In the order of kyrPlugin.h.
constexpr TOperation kOperations[] = {
    [](TSession& session, TByteReader& input) {
        const auto severity = static_cast<kyrLogSeverity>(input.Byte());
        const TText text = Text(session, input);
        StatusOf([&] { kyrWriteLog(nullptr, severity, text); });
    },
    Run<kyrAddClass, Handle, ClassName>,
    Set<kyrAddProperty, Text>,
    NUMBER_CALLS(Set, kyrAdd, Property),
    Set<kyrAddStringProperty, Text>,
    Set<kyrAddReferenceProperty, Reference>,
    Set<kyrAddDateTimeProperty, Time>,
    [](TSession& session, TByteReader& input) {
        const std::string line = input.Text();
        StatusOf([&] {
            TCIMValue value = ReadValueLine(line, session.fContainer);
            Add(session, input,
                [&](const char* name) { return kyrAddCIMValueProperty(&session.fHandle, name, &value); });
        });
    },
    [](TSession& session, TByteReader& input) {
        // This call does not check that there is a current instance.
        if (session.fHandle.fCurrentInstance != nullptr) Set<kyrAddArrayProperty, Array>(session, input);
    },

    [](TSession& session, TByteReader& input) {
        Renew(input.Pick(session.fArrays), kyrDeleteCIMValueArray, kyrNewCIMValueArray);
    },
    NUMBER_CALLS(Append, kyrArrayAdd, ),
    Append<kyrArrayAddString, Text>,
    [](TSession& session, TByteReader& input) {
        CallThatRaises([&] { return Pass<kyrArrayAddReference, Array, Reference>(session, input); });
    },
    Run<kyrArrayAddDateTime, Array, Time>,

    [](TSession& session, TByteReader& input) {
        Renew(input.Pick(session.fReferences), kyrDeleteCIMReference,
              [&](kyrCIMReference* place) { return kyrNewCIMReference(place, &session.fHandle); });
    },
    Run<kyrSetReferenceClassName, Reference, ClassName>,
    [](TSession& session, TByteReader& input) {
        kyrCIMReference const reference = Reference(session, input);
        const TText path = Text(session, input);
        const kyrStatusCode status = Call([&] { return kyrSetReferencePath(reference, path); });
        Require(status == (reference != nullptr ? kyrStatusNotImplemented : kyrStatusFail), "no path is ever set");
    },
    NUMBER_CALLS(Bind, kyrReferenceAdd, ),
    Bind<kyrReferenceAddString, Text>,
    [](TSession& session, TByteReader& input) {
        if (++session.fNestings <= kMaxNestings)
            Pass<kyrReferenceAddReference, Reference, Key, Reference>(session, input);
    },
    Bind<kyrReferenceAddDateTime, Time>,

    [](TSession& session, TByteReader& input) {
        Renew(input.Pick(session.fDateTimes), kyrDeleteCIMDateTime, kyrNewCIMDateTime);
    },
    Run<kyrGetLocalTime, Time>,
    [](TSession& session, TByteReader& input) {
        kyrCIMDateTime const time = Time(session, input);
        const std::uint64_t date = input.Number();
        const std::uint64_t clock = input.Number();
        Call([&] {
            return kyrSetDateTime(time, date & 0xFFFF, date >> 16 & 0xFFFF, static_cast<std::uint32_t>(date >> 32),
                                  clock & 0xFF, clock >> 8 & 0xFF, clock >> 16 & 0xFF,
                                  static_cast<std::uint32_t>(clock >> 32), static_cast<std::int32_t>(input.Number()));
        });
    },
    [](TSession& session, TByteReader& input) {
        kyrCIMDateTime const time = Time(session, input);
        const std::uint64_t days = input.Number();
        const std::uint64_t clock = input.Number();
        Call([&] {
            return kyrSetDateTimeInterval(time, static_cast<std::uint32_t>(days), clock & 0xFF, clock >> 8 & 0xFF,
                                          clock >> 16 & 0xFF, static_cast<std::uint32_t>(clock >> 32));
        });
    },
    Run<kyrSetDateTimeString, Time, Text>,
};

/// Like the core after a data callback: an instance that cannot be stored is freed, unless a class owns it already.
void EndCallback(kyriIOHandle& handle) {
    if (StatusOf([&] { handle.CloseCurrentInstance(); }) == kyrStatusOK) return;
    const TCIMInstance* const open = handle.fCurrentInstance;
    if (open == nullptr) return;
    const std::vector<TCIMInstance*> stored = open->GetClass()->EnumerateInstances(false);
    if (std::find(stored.begin(), stored.end(), open) == stored.end()) delete open;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const TRunLog log;
    TSession session;
    TByteReader input(data, size);
    while (!input.IsAtEnd()) input.Pick(kOperations)(session, input);
    EndCallback(session.fHandle);
    WalkContainer(session.fContainer, false);
    return 0;
}
