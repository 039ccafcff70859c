#ifndef KYR_HOST_ISOLATION_INPROCESS_H
#define KYR_HOST_ISOLATION_INPROCESS_H

#include <string>
#include <vector>

#include "base/CoreLog.h"

struct TPluginLibrary;
class TPluginContainer;

/// Runs plugins in this process, one after another. A plugin that crashes or hangs takes the host with it.
class TInProcessRun {
public:
    TInProcessRun(TPluginContainer& container, const TCoreLog& log);
    ~TInProcessRun();
    TInProcessRun(const TInProcessRun&) = delete;
    TInProcessRun& operator=(const TInProcessRun&) = delete;

    void Load(TPluginLibrary& library);
    /// Asks the plugins of the libraries that were loaded for the classes of those names, or for all if there is no
    /// name.
    void Query(const std::vector<std::string>& classNames);

private:
    void ReadLog();

    TPluginContainer& fContainer;
    const TCoreLog& fLog;
    TLogCapture fCapture;
    TPluginLibrary* fLibrary = nullptr;  // the one that was loaded or called last: what is logged comes from it
};

#endif
