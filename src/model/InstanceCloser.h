#ifndef KYR_MODEL_INSTANCECLOSER_H
#define KYR_MODEL_INSTANCECLOSER_H

class TCIMInstance;

/// Adds an instance to its class, which owns it from then on. If that raises, the pointer is null when the failure has
/// destroyed the instance; otherwise the instance is still the caller's.
void CloseInstance(TCIMInstance*& instance);

#endif
