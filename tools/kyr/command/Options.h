#ifndef OPTIONS_H
#define OPTIONS_H

#include <string>
#include <vector>

#include "isolation/TimeSpan.h"

/// What every command needs. Paths are absolute.
struct TSessionOptions {
    std::string from;  ///< a saved collection; empty: this machine
    std::string plugins;
    std::string schema;
    std::string log;  ///< empty: none
    bool verbose = false;
    bool inProcess = false;
    double timeout = 30;  ///< seconds for each plugin
    double deadline = 0;  ///< seconds for all of them together; 0: none
    TMoment start = TClock::now();

    TMoment Latest() const { return deadline > 0 ? After(start, deadline) : TMoment::max(); }
};

struct TOptions {
    enum ECommand { eShowText, eCollect, eShow, eAssoc, eSchema, eIdentity };

    ECommand command = eShowText;
    std::string text;  ///< of eShowText: help or version
    TSessionOptions session;
    std::vector<std::string> classes;  ///< of eCollect and eShow, with their subclasses; empty: all
    std::string output;                ///< of eCollect: the file to write; empty: standard output
    bool json = false;
    bool raw = false;
    bool null = false;
    bool references = false;
    bool tree = false;
    bool provenance = false;
    bool stable = false;    ///< without what changes by itself
    std::string className;  ///< of eSchema; empty: the tree
    bool jsonSchema = false;
    // Of eAssoc. Empty filters let everything through.
    std::string path;
    std::string assocClass;
    std::string resultClass;
    std::string role;
    std::string resultRole;
};

/// Raises TCommandError with eExitUsage.
TOptions ParseOptions(int argc, char** argv);

#endif
