#ifndef TREFUSEDCALL_H
#define TREFUSEDCALL_H

#include <functional>
#include <string>

#include "kyr/kyrExport.h"
#include "kyr/kyrStatus.h"

/// A call of a plugin that failed, with what the plugin gave it. The log of such a call does not always name the
/// property, and that of some calls is empty, so that a host that wants to tell what went wrong observes them here.
struct KYR_API TRefusedCall {
    kyrStatusCode status;   ///< what the call returns or raises
    std::string call;       ///< its name, such as "kyrAddUint32Property"; that of the typed call for a given value
    std::string className;  ///< of the open instance or the reference, or the one that is named; empty: none
    std::string name;       ///< the property or key that is named; empty: none
    std::string given;      ///< a text that cannot be read, or the type of a value; empty: nothing, or NULL

    /// What a host gives to Observe.
    using TObserver = std::function<void(const TRefusedCall&)>;
    /// Calls the observer for each call that fails from now on, after its lines of the log and before the plugin knows.
    /// An observer without a target ends that. It must not raise.
    static void Observe(TObserver observer);
};

#endif
