#ifndef SAVEDMACHINE_H
#define SAVEDMACHINE_H

#include <string>

#include "host/KyrRun.h"

/// A saved collection of one of the machines in tests/fixtures/machines.
class TSavedMachine : public TempFolder {
public:
    explicit TSavedMachine(const std::string& machine) {
        RunKyrOn(machine, "collect --stable " ALL_PLUGINS " -o " + File());
    }

    std::string File() const { return Path() + "/machine.xml"; }
    TRunResult Show(const std::string& arguments, const std::string& environment = "") const {
        return RunKyr("show " + File() + " " + arguments, environment);
    }
    TRunResult Assoc(const std::string& arguments) const { return RunKyr("assoc " + File() + " " + arguments); }
    TRunResult Get(const std::string& arguments) const { return RunKyr("get " + arguments + " " + File()); }
};

#endif
