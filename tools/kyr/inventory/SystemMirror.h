#ifndef SYSTEMMIRROR_H
#define SYSTEMMIRROR_H

class TContainer;

/// Puts the computer system that was collected where plugins look for it, in the plugin manager's schema.
void ShowSystemToPlugins(const TContainer& collected);

#endif
