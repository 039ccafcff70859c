#ifndef KYR_HOST_INVENTORY_INVENTORY_H
#define KYR_HOST_INVENTORY_INVENTORY_H

#include <memory>
#include <string>
#include <vector>

#include "base/ExitStatus.h"
#include "inventory/SessionOptions.h"

class TContainer;

/// The container that a command works on: the schema and instances of this machine, collected from its plugins, or
/// those of a saved collection. State instances in it say how complete it is. Only one in a process may be of this
/// machine, since a process loads plugins once.
class TInventory {
public:
    /// Reads the saved collection if the options name one, otherwise the base document and the plugins' documents.
    /// Raises TCommandError.
    explicit TInventory(const TSessionOptions& options);
    /// A second inventory, in a container of its own. It uses the log of the first one.
    TInventory(const TSessionOptions& options, const TInventory& first);
    ~TInventory();

    TContainer& Container() const;
    /// Returns what the function finds in the container. If it raises TCommandError, as for an unknown class, the
    /// plugins are loaded, if nothing was collected yet, and what failed is printed before the exception is passed on:
    /// what was looked for may be that of a plugin that cannot be loaded.
    template <typename TLookUp>
    auto LookUp(TLookUp lookUp) {
        try {
            const TLogCapture capture;  // the log of a search that fails says nothing to the user
            return lookUp(Container());
        } catch (const TCommandError&) {
            LoadPlugins();
            Conclude();
            throw;
        }
    }
    /// Loads the plugins, so that they register their names and versions, and asks them for no instances.
    void LoadPlugins();
    /// Loads the plugins and asks them for the instances of the named classes (not of subclasses), or of all classes if
    /// there are no names. An optional class is asked for only if it is among those that the user has named, or needs
    /// something that is granted. In a saved collection, Collect and LoadPlugins change only the states, to what they
    /// would be if it had been collected so. Only the first call of either has an effect.
    void Collect(const std::vector<std::string>& classes, const std::vector<std::string>& named = {});
    /// Prints on standard error what is not complete, and returns the exit status that follows.
    EExit Conclude() const;
    /// The same status, for a command whose result tells what is not complete. Only "nothing was collected" is printed.
    EExit ConcludeSilently() const;

private:
    class TBody;
    std::unique_ptr<TBody> fBody;
};

#endif
