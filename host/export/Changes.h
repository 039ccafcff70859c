#ifndef KYR_HOST_EXPORT_CHANGES_H
#define KYR_HOST_EXPORT_CHANGES_H

#include <string>
#include <vector>

class IRunSink;
class TContainer;

/// One of two runs between which changes are found.
struct TMoment {
    const TContainer& container;
    std::string collectedAt;
};

/// Hands the rows of the table change to the sink: what differs between two runs of one host, in the classes and their
/// subclasses, or in all.
void WriteChanges(const TMoment& before, const TMoment& after, const std::vector<std::string>& classes, IRunSink& sink);
/// The row that says that the two could not be compared, and why.
void WriteNotCompared(const std::string& previousAt, const std::string& changedAt, const std::string& why,
                      IRunSink& sink);

#endif
