#ifndef KYR_HOST_RENDER_SUMMARYPIECES_H
#define KYR_HOST_RENDER_SUMMARYPIECES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class TCIMInstance;
class TContainer;

/// How much of a value is told.
enum class ESummaryForm {
    eWhole,
    eDay,     ///< of a time
    eNumber,  ///< without its unit
    eTotal,   ///< of all equal instances together, with its unit
};

/// What a line of the summary tells by one property.
struct TSummaryPiece {
    const char* property;
    const char* before = "";       ///< stands before the value, unless the line begins with it
    const char* after = "";        ///< stands behind the value
    const char* absent = nullptr;  ///< what is told to be missing if there is no value; null: nothing is told
    ESummaryForm form = ESummaryForm::eWhole;
};

/// The value of a property as visible text of moderate length; empty if there is none.
std::string SummaryValue(const TCIMInstance& instance, const char* property);
/// The value of a property that is an integer; 0 if there is none.
uint64_t SummaryNumber(const TCIMInstance& instance, const char* property);
/// Whether a property has the boolean value; one without a value has neither.
bool HasBoolean(const TCIMInstance& instance, const char* property, bool value);
/// The sum of a property of the instances as people read it; empty if it is 0 or too large, or they are no uint64.
std::string SummarySum(const std::vector<TCIMInstance*>& instances, const char* property);
/// The text of the pieces that have a value, or whose absence is told, of so many equal instances. A value for which
/// the instance notes an absence only stands in for the real one, as that of a key must, and counts as none.
std::string SummaryText(const TCIMInstance& instance, const std::vector<TSummaryPiece>& pieces, size_t count = 1);

/// The first texts with commas between them, and behind them how many more there are.
std::string FoldedTexts(const std::vector<std::string>& texts, size_t most);

/// The instances of the class and its subclasses; none if the container lacks the class.
std::vector<TCIMInstance*> InstancesOf(const TContainer& container, const char* className);

#endif
