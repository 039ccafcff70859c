#ifndef KYR_CWRAPPERS_REFUSEDCALL_H
#define KYR_CWRAPPERS_REFUSEDCALL_H

#include <string>
#include <vector>

#include "kyr/TCIMValue.h"
#include "kyr/TRefusedCall.h"

class TCIMReference;
struct kyriIOHandle;

/// Tells the observer, if there is one. The texts may be null.
kyrStatusCode NoteRefusal(kyrStatusCode status, const char* call, const char* className, const char* name,
                          const char* given);

/// A property of the open instance, if there is one: its value, or a text to read it from, which may be null.
void NoteRefusedValue(kyrStatusCode status, const kyriIOHandle* handle, const char* name, const TCIMValue& value);
kyrStatusCode NoteRefusedText(kyrStatusCode status, const char* call, const kyriIOHandle* handle, const char* name,
                              const char* text);
/// An array property, with the first element that is not of its type.
void NoteRefusedElements(kyrStatusCode status, const kyriIOHandle& handle, const char* name, TCIMValue::TCIMType type,
                         const std::vector<TCIMValue>& elements);
/// A key of a reference.
void NoteRefusedKey(kyrStatusCode status, const TCIMReference& reference, const char* key, const TCIMValue& value);

#endif
