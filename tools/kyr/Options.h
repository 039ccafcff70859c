#ifndef OPTIONS_H
#define OPTIONS_H

#include <string>
#include <vector>

/// What every command needs. Paths are absolute.
struct TSessionOptions {
    std::string plugins;
    std::string schema;
    std::string log;  ///< empty: none
    bool verbose = false;
};

struct TOptions {
    enum ECommand { eShowText, eCollect, eSchema, eIdentity };

    ECommand command = eShowText;
    std::string text;  ///< of eShowText: help or version
    TSessionOptions session;
    std::vector<std::string> classes;  ///< of eCollect; empty: all
    bool raw = false;
    bool references = false;
    std::string className;  ///< of eSchema; empty: the tree
};

/// Raises TCommandError with eExitUsage.
TOptions ParseOptions(int argc, char** argv);

#endif
