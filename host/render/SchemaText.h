#ifndef KYR_HOST_RENDER_SCHEMATEXT_H
#define KYR_HOST_RENDER_SCHEMATEXT_H

#include "base/Output.h"

class TCIMClass;
class TContainer;

/// Prints all classes, each indented below its superclass, with the plugin that declares it.
void PrintClassTree(const TContainer& schema, TOutput& output);

/// Prints one class: its description, qualifiers, and properties with types, units and the words for their values.
void PrintClass(const TCIMClass& cls, TOutput& output);

#endif
