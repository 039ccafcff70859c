#ifndef KYR_HOST_CHECK_CHECK_H
#define KYR_HOST_CHECK_CHECK_H

#include <string>
#include <vector>

#include "check/Findings.h"

// kyr check looks at one file after another. What kind a file is, and which checker looks at it:
//
//     TTarget::eDocument    CheckDocument    rules D, S and V
//     TTarget::eLibrary     CheckLibrary     rules L, and then rules R of what it reports: TrialRuns.h
//     TTarget::eCollection  CheckCollection  rules R
//     TTarget::eFolder      CheckFolder      rules L about where libraries stand
//     TTarget::eNoFile      CheckNoFile      what has the name of a document or library, and is none
//
// A folder stands for the documents and libraries in it and in its folders. A checker gets one file, adds its findings
// (Findings.h says how), and raises TCommandError with eExitNothing only if it cannot read the file at all. To add one,
// declare it below, call it in Check.cpp, and add its rules to Rules.cpp and docs/check.md.

struct TTarget {
    enum EKind { eDocument, eLibrary, eCollection, eFolder, eNoFile };
    EKind kind;
    std::string path;
};

/// What is known beside the file that is checked.
struct TCheckContext {
    std::string schema;                     ///< the base document
    std::vector<std::string> plugins = {};  ///< plugin folders, whose documents are known too
};

/// The files that an argument stands for. Raises TCommandError with eExitNothing if there are none.
std::vector<TTarget> FindTargets(const std::string& path);

/// Whether the core's reader takes the plain file for a compressed one, by its path.
bool IsTakenForCompressed(const std::string& path);
/// Whether document and library belong together by their names (D15).
void CheckDocumentName(const std::string& path, TFindings& findings);
void CheckLibraryName(const std::string& path, TFindings& findings);
/// The instances of a saved collection.
void CheckCollection(const std::string& path, TFindings& findings);
void CheckLibrary(const std::string& path, TFindings& findings);
/// Whether the libraries below the folder are found by a host (L09 and L10).
void CheckFolder(const std::string& path, TFindings& findings);
void CheckNoFile(const std::string& path, TFindings& findings);
void CheckDocument(const std::string& path, const TCheckContext& context, TFindings& findings);

/// Checks all of them, and applies what suppresses findings. A file that cannot be read is told on standard error; then
/// the result is false.
bool CheckTargets(const std::vector<TTarget>& targets, const TCheckContext& context, TFindings& findings);

#endif
