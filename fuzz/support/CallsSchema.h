#ifndef KYR_FUZZ_SUPPORT_CALLSSCHEMA_H
#define KYR_FUZZ_SUPPORT_CALLSSCHEMA_H

class TContainer;

/// The container of all runs. Its schema: F_All with a property of each type and an array of each, named by the type in
/// singular and plural; its subclass F_Sub; F_Keys with a key of each type; F_Link, an association between these; its
/// subclass F_Outer, which refers to F_Link; F_Abstract.
TContainer& CallsContainer();
/// Removes all instances, for the next run.
void EmptyCallsContainer();

// Parameters for the calls, including invalid ones and null.
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
