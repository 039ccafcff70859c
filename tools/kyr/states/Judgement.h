#ifndef JUDGEMENT_H
#define JUDGEMENT_H

#include <string>
#include <vector>

#include "inventory/Library.h"

/// What was wanted: exact names of classes, an empty list for all, null for none.
using TWanted = const std::vector<std::string>*;

/// What became of a class that the library's document brought.
TVerdict JudgeClass(const TLibrary& library, const TCIMClass& cls, TWanted wanted);

/// What became of the library, or of one of its plugins if that is not null. There is no reason where its classes
/// have theirs.
TVerdict JudgePlugin(const TLibrary& library, const TPluginFacts* plugin, TWanted wanted);

/// The notes that belong to the class, or with null all that belong to none of the library's classes.
std::vector<const TNote*> NotesOf(const TLibrary& library, const TCIMClass* cls);

/// Whether something is missing.
bool IsMissing(const TVerdict& verdict);

/// Why the collection is not complete if so many plugins are not; empty if none.
std::string PluginsMissing(size_t missing, size_t all);

#endif
