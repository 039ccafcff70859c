#ifndef KYR_HOST_CHECK_RULES_H
#define KYR_HOST_CHECK_RULES_H

#include <string>
#include <vector>

/// How much a finding matters, the least first.
enum class ELevel { eNote, eWarning, eError };

/// "note", "warning" or "error".
const char* NameOf(ELevel level);

/// What kyr check looks for. The first letter of the id says what is checked: D how a document is written, S the schema
/// that it declares, V units and words of values, L a library, R what a plugin reported, X the suppressions themselves.
/// An id keeps its meaning for ever, since suppressions name it.
struct TRule {
    const char* id;
    ELevel level;
    const char* title;  ///< one line without a full stop
    const char* why;    ///< a paragraph: what is wrong, what comes of it, what to do
};

/// All rules, in the order of docs/check.md. To add one, add its row in Rules.cpp and its section with two examples in
/// docs/check.md.
const std::vector<TRule>& AllRules();
/// In any case of letters. Null if there is none of that id.
const TRule* FindRule(const std::string& id);

#endif
