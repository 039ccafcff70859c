#ifndef KYR_HOST_ISOLATION_INPROCESS_H
#define KYR_HOST_ISOLATION_INPROCESS_H

#include <string>
#include <vector>

#include "base/CoreLog.h"

struct TPluginLibrary;
class TPluginContainer;

/// Runs plugins in this very process, one after another, and without limits.
class TInProcessRun {
public:
    TInProcessRun(TPluginContainer& container, const TCoreLog& log) : fContainer(container), fLog(log) {}

    void Load(TPluginLibrary& library);
    /// Runs the core's query with the libraries that were loaded; no name stands for all classes.
    void Query(const std::vector<std::string>& classNames);

private:
    void ReadLog();

    TPluginContainer& fContainer;
    const TCoreLog& fLog;
    TLogCapture fCapture;
    TPluginLibrary* fLibrary = nullptr;  // the one that was loaded or called last
};

#endif
