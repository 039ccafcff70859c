#ifndef KYR_FUZZ_SUPPORT_CALLSSCHEMA_H
#define KYR_FUZZ_SUPPORT_CALLSSCHEMA_H

class TContainer;

/// The container of all sessions, with the schema of the calls: a class F_All with a property of each type, named by
/// it, and an array of each, named by it in the plural; F_Sub below it; F_Keys with a key of each type; F_Link, an
/// association of these, and F_Outer below it, which points to F_Link; F_Abstract.
TContainer& CallsContainer();
/// Leaves the schema alone in it, for the next session.
void EmptyCallsContainer();

// What the calls are given. Some fit nothing, and a null stands for the parameter left out.
constexpr const char* kClassNames[] = {"F_All", "f_sub",  "F_Keys", "F_Link",  "F_Abstract",
                                       "F_No",  "F_Key!", "",       "F_Outer", nullptr};
// clang-format off
constexpr const char* kPropertyNames[] = {
    "Id", "boolean", "uint8", "sint8", "uint16", "sint16", "uint32", "sint32", "uint64", "sint64", "real32", "real64",
    "string", "DateTime", "booleans", "uint8s", "sint8s", "uint16s", "sint16s", "uint32s", "sint32s", "uint64s",
    "sint64s", "real32s", "real64s", "strings", "datetimes", "From", "To", "Inner", "DateTimeOfCollection", "none",
    "no name", "", nullptr};
// clang-format on

#endif
