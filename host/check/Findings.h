#ifndef KYR_HOST_CHECK_FINDINGS_H
#define KYR_HOST_CHECK_FINDINGS_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "check/Rules.h"

/// Where something is wrong. What is not known, or does not apply, is empty or 0.
struct TPlace {
    std::string file = {};
    size_t line = 0;  ///< from 1
    std::string cls = {};
    std::string property = {};
};

/// One violation of a rule.
struct TFinding {
    const TRule* rule;
    TPlace place;
    std::string text;              ///< what is wrong, naming the class, the property and the word
    std::string remedy;            ///< what to do, with the nearest right word if there is one
    std::string excuse = {};       ///< the reason that a suppression gives; such a finding does not count
    bool isExcusedInFile = false;  ///< by a comment in the file itself
    size_t count = 1;              ///< how many it stands for
};

/// Something that suppresses findings; see Allowances.h.
struct TAllowance {
    TPlace place = {};  ///< its own
    std::string rule = {};
    std::string reason = {};
    size_t firstLine = 0;  ///< of a comment: what it allows in its own file
    size_t lastLine = 0;
    std::string folder = {};  ///< of a line in a file: what it allows in its folder
    std::string what = {};
    bool isUsed = false;
};

/// A word of what is checked, in quotes, as one visible line that is not too long.
std::string Quoted(std::string_view word);

/// What the checks have found. A checker adds its findings in any order:
///
///     findings.Add("L04", {library}, "the folder 'libfoo' has 'lib' in its name", "rename it to 'foo'");
///
/// The rule gives the level. Suppressions, sorting, printing and the exit status are not the checker's business.
class TFindings {
public:
    /// Of one rule in one file at most this many are kept; one more finding tells how many others there are.
    static constexpr size_t kMostOfARule = 500;

    /// The id must be one of AllRules().
    void Add(const char* rule, TPlace place, const std::string& text, const std::string& remedy);
    /// Whether of that rule in that file enough are kept. Then the one at hand is counted, and needs no text.
    bool CountsOnly(const char* rule, const std::string& file);
    /// Adds the findings that tell how many are not kept.
    void AddRest();
    /// Sorts by file, line and rule. Must be called once, when all was added.
    void Sort();

    void Allow(TAllowance allowance) { fAllowances.push_back(std::move(allowance)); }
    std::vector<TAllowance>& Allowances() { return fAllowances; }

    /// Whether an error in that file was added.
    bool HasErrorIn(const std::string& file) const;
    std::vector<TFinding>& All() { return fFindings; }
    const std::vector<TFinding>& All() const { return fFindings; }
    /// How many of that level there are without an excuse, those that are not kept among them.
    size_t Count(ELevel level) const;

private:
    std::vector<TFinding> fFindings;
    std::vector<TAllowance> fAllowances;
    std::map<std::pair<std::string, std::string>, size_t> fCounts;  // by file and rule
};

#endif
