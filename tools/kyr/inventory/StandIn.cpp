#include "inventory/StandIn.h"

#include <exception>

#include "kyr/TKYRException.h"

void TObservedCallbacks::GetData(TContainer* container, std::vector<TCIMClass*>& classes) {
    auto* const query = dynamic_cast<IPluginBasicQueryCallbacks*>(&fCallbacks);
    if (query == nullptr) throw TKYRException(kyrStatusInvalidPlugin);
    fObserver.asked(classes);
    try {
        query->GetData(container, classes);
    } catch (const std::exception& e) {
        fObserver.ended(e.what());
        throw;
    } catch (...) {
        fObserver.ended("an exception of a kind unknown");
        throw TKYRException(kyrStatusFail);  // the core catches standard ones only
    }
    fObserver.ended("");
}
