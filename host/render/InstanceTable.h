#ifndef KYR_HOST_RENDER_INSTANCETABLE_H
#define KYR_HOST_RENDER_INSTANCETABLE_H

#include <string>
#include <vector>

#include "base/Output.h"

class TInstanceChoice;

/// How instances are printed as a table; each is an option of kyr show.
struct TTableOptions {
    std::vector<std::string> columns;  ///< the properties; empty: those in the qualifier Columns of each class
    bool csv = false;                  ///< comma-separated values (RFC 4180) in place of aligned columns
    bool raw = false;                  ///< plain values in place of display text
    bool stable = false;               ///< without columns that change by themselves, unless they are asked for
};

/// Prints the chosen instances as one table, with a line for each, or without given columns as a table for each class.
/// Of all instances, those of classes that have all columns are printed. Returns whether there was any instance. Raises
/// TCommandError for a column that none of the classes has, and if several classes of unlike columns are to be CSV.
bool PrintTable(const TInstanceChoice& choice, const TTableOptions& options, TOutput& output);

#endif
