#ifndef KYR_MODEL_INSTANCECLOSER_H
#define KYR_MODEL_INSTANCECLOSER_H

class TCIMInstance;

/// Adds an instance to its class, which owns it from then on. On failure the exception goes up; a failure that
/// destroyed the instance has set the pointer to null, and any other leaves the instance with its owner.
void CloseInstance(TCIMInstance*& instance);

#endif
