#ifndef CONCLUSION_H
#define CONCLUSION_H

#include "Exit.h"

class TContainer;

/// Tells on standard error what of a collection is not complete, plugin by plugin, and gives the exit status that
/// follows. What does not say how complete it is counts as complete.
EExit TellWhatIsMissing(const TContainer& container);

#endif
