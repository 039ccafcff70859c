#ifndef KYR_FUZZ_SUPPORT_CONTAINERWALK_H
#define KYR_FUZZ_SUPPORT_CONTAINERWALK_H

class TCIMClass;
class TContainer;

/// True if a look-up of the class's name gives the class; for an empty name, if it gives the root class.
bool IsFoundUnderItsName(const TCIMClass& cls);

/// Visits everything in a container and displays every value. The caller says whether each instance can still be found
/// by its present keys.
void WalkContainer(const TContainer& container, bool isFiledByKeys);

#endif
