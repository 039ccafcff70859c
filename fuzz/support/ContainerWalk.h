#ifndef KYR_FUZZ_SUPPORT_CONTAINERWALK_H
#define KYR_FUZZ_SUPPORT_CONTAINERWALK_H

class TCIMClass;
class TContainer;

/// The empty name is the root class's, whatever other class has taken it.
bool IsFoundUnderItsName(const TCIMClass& cls);

/// Visits everything in a container and shows every value. Whether the keys of instances are those under which their
/// classes have filed them is for the caller to know.
void WalkContainer(const TContainer& container, bool isFiledByKeys);

#endif
