#ifndef CLASSORDER_H
#define CLASSORDER_H

#include <vector>

class TCIMClass;
class TContainer;

/// All classes, each behind its superclass, the classes that its references point to, and its elder siblings. Raises
/// TCommandError with eExitOutput if there is no such order.
std::vector<const TCIMClass*> OrderClasses(const TContainer& container);

#endif
