#ifndef PLUGINMARKS_H
#define PLUGINMARKS_H

struct TLibrary;
class TContainer;

/// Marks the classes that the library's document brought with the plugin's name and version, as the core does where
/// it reads the document itself.
void MarkClasses(const TLibrary& library, const TContainer& container);

#endif
