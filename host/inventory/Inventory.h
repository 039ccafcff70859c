#ifndef KYR_HOST_INVENTORY_INVENTORY_H
#define KYR_HOST_INVENTORY_INVENTORY_H

#include <memory>
#include <string>
#include <vector>

#include "base/ExitStatus.h"
#include "inventory/SessionOptions.h"

class TContainer;

/// What there is to look at: this machine's schema and, once collected, its instances; or a saved collection with all
/// of that. How complete it is stands in it too, as instances of the classes of schema/collection.xml. There is one
/// in a process.
class TInventory {
public:
    /// Sets the core up and reads the documents, or the file. Raises TCommandError.
    explicit TInventory(const TSessionOptions& options);
    ~TInventory();

    TContainer& Container() const;
    /// What the function finds in the container. Where it raises TCommandError, what could not be loaded is told first:
    /// it may be what declares the class that is unknown.
    template <typename TLookUp>
    auto LookUp(TLookUp lookUp) {
        try {
            const TLogCapture ownLines;
            return lookUp(Container());
        } catch (const TCommandError&) {
            LoadPlugins();
            Conclude();
            throw;
        }
    }
    /// Has each plugin tell its name, and asks for nothing.
    void LoadPlugins();
    /// Asks the plugins for the classes, exact names, or for all if there are none. As above it does nothing with a
    /// file, and neither of the two does anything after the other.
    void Collect(const std::vector<std::string>& classes);
    /// Tells on standard error what is not complete, and gives the exit status that follows from it.
    EExit Conclude() const;

private:
    class TBody;
    std::unique_ptr<TBody> fBody;
};

#endif
