#ifndef KYR_HOST_RENDER_TREELINE_H
#define KYR_HOST_RENDER_TREELINE_H

#include <cstddef>
#include <string>

class TCIMInstance;
class TOutput;

/// Prints an instance on a line of a tree: its name with the note behind it, what tells most of it, such as its size,
/// and its class, which stands on a line of its own if it does not fit.
void PrintTreeLine(const TCIMInstance& instance, size_t depth, const std::string& note, TOutput& output);

#endif
