#include "PluginQuery.h"

#include <algorithm>
#include <exception>

#include "Session.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"

namespace {

bool StartsWith(const std::string& text, const std::string& start) { return text.compare(0, start.size(), start) == 0; }

// The name that stands in the text behind a mark.
std::string NameBehind(const std::string& text, const std::string& mark) {
    const size_t start = text.find(mark);
    if (start == std::string::npos) return "";
    const size_t end = text.find_first_of(" :)", start + mark.size());
    return text.substr(start + mark.size(), end - start - mark.size());
}

// The class that an error line of the core speaks of, if it does.
std::string ClassIn(const std::string& text) {
    for (const char* mark : {"CIM class ", "GetClass("})
        if (const std::string name = NameBehind(text, mark); !name.empty()) return name;
    return StartsWith(text, "Instance ") ? NameBehind(text, "Instance ") : "";
}

/// What the log says of one plugin's turn.
class TTurn {
public:
    TTurn(const std::string& plugin, TFailures& failures) : fPlugin(plugin), fFailures(failures) {}

    void Read(const ILogger::TLogEntry& entry) {
        const std::string asking = "Asking plugin " + fPlugin + " for ";
        const std::string throwing = "Plugin " + fPlugin + " threw exception ";
        if (entry.plugin == nullptr && StartsWith(entry.text, asking))
            fAsked.push_back(entry.text.substr(asking.size()));
        else if (entry.plugin == nullptr && StartsWith(entry.text, throwing))
            fEnd = entry.text.substr(throwing.size());
        else if (entry.severity == kyrLogError)
            fFailures.Add({fPlugin, entry.plugin == nullptr ? ClassIn(entry.text) : "", entry.text});
    }

    void SetEnd(const std::string& reason) { fEnd = reason; }

    // A plugin that ended with a failure owes those classes of which nothing has come.
    void NoteEnd(const TContainer& container) const {
        if (fEnd.empty()) return;
        bool owes = false;
        for (const std::string& name : fAsked) {
            if (!container.GetClass(name)->EnumerateInstances(false).empty()) continue;
            fFailures.Add({fPlugin, name, "not collected: the plugin ended with " + fEnd});
            owes = true;
        }
        if (!owes) fFailures.Add({fPlugin, "", "perhaps incomplete: the plugin ended with " + fEnd});
    }

    size_t CountAsked() const { return fAsked.size(); }

private:
    const std::string fPlugin;
    TFailures& fFailures;
    std::vector<std::string> fAsked;
    std::string fEnd;  // empty: it went well
};

}  // namespace

void TPluginQuery::EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                                      bool associations) {
    if (!fSession.IsUsable(*plugin)) return;
    TTurn turn(TSession::NameOf(*plugin), fSession.Failures());
    try {
        TQueryManager::EnumerateInstances(plugin, container, classNames, associations);
    } catch (const std::exception& e) {
        turn.SetEnd(e.what());
    } catch (...) {
        turn.SetEnd("an exception of a kind unknown");
    }
    for (const ILogger::TLogEntry& entry : fSession.Log().Take()) turn.Read(entry);
    turn.NoteEnd(*container);
    fAsked += turn.CountAsked();
}
