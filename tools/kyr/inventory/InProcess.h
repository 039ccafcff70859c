#ifndef INPROCESS_H
#define INPROCESS_H

#include <string>
#include <vector>

struct TLibrary;
class TContainer;
class TLog;
class TStreamingContainer;

/// Loads a library into this very process.
void LoadHere(TLibrary& library, TStreamingContainer& container, const TLog& log);

/// Runs the core's query with the libraries that were loaded so.
void QueryHere(TContainer& container, const std::vector<std::string>& classNames);

#endif
