#ifndef KYR_PLUGINS_GUESTS_ENGINEFILES_H
#define KYR_PLUGINS_GUESTS_ENGINEFILES_H

#include <set>
#include <string>
#include <vector>

#include "GuestFacts.h"

/// No description of a guest is longer. What is cut off is no whole document any more.
constexpr size_t kFileLimit = 1 << 20;
/// Of one engine; more are not looked at.
constexpr size_t kMostGuests = 10000;

/// The names in a folder of an engine, at most so many as above. A folder that is there and cannot be read, or holds
/// more, is missed.
template <typename TGuest>
std::vector<std::string> ListGuests(const TSystemRoot& root, const std::string& folder, TEngineGuests<TGuest>& engine) {
    TFact<std::vector<std::string>> names = root.List(folder);
    engine.MissUnreadable(names);
    std::vector<std::string> all = names.ValueOr({});
    if (all.size() <= kMostGuests) return all;
    engine.Miss(TListing::Missing(EAbsence::eNotSupported, folder));
    all.resize(kMostGuests);
    return all;
}

/// Gives each guest a name of its own: of those with the same name, all but the first get the other one as well.
/// Names are keys.
class TUniqueNames {
public:
    std::string For(const std::string& name, const std::string& other) {
        std::string unique = fTaken.insert(name).second ? name : name + " (" + other + ")";
        fTaken.insert(unique);
        return unique;
    }

private:
    std::set<std::string> fTaken;
};

/// The name without the ending; empty if it ends otherwise.
std::string WithoutEnding(const std::string& name, std::string_view ending);

/// Whether the process runs whose number the file holds. Without the file it does not: what runs has written it since
/// the computer was started.
TFact<bool> IsProcessOf(const TSystemRoot& root, const std::string& pidFile);
/// Whether a process runs, as a file tells. Nobody knows if the processes of others are hidden.
TFact<bool> IsAlive(const TSystemRoot& root, uint32_t process, const std::string& source);
/// Whether a container of LXC has processes.
TFact<bool> IsLxcRunning(const TSystemRoot& root, const std::string& name);

/// Settings as lines "key: value" or "key = value", up to the first section in brackets.
TFact<std::string> FindSetting(const TFact<std::string>& file, std::string_view key, char separator);

#endif
