#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Races.h"
#include "kyr/TLogger.h"

namespace {

constexpr const char* kUsage =
    "kyr-bench [--rounds N] [--instances N] [--large] [--only TEXT] | --counted\n"
    "  --rounds N     how often each contender runs; the medians are told (5)\n"
    "  --instances N  in the document that fills a container (100000)\n"
    "  --large        also with 1,000,000 instances or links stored\n"
    "  --only TEXT    only the races whose name holds the text\n"
    "  --counted      the small fixed pieces of work that scripts/bench counts under callgrind\n";

struct TOptions {
    int rounds = 5;
    unsigned instances = 100'000;
    bool large = false;
    bool counted = false;
    const char* only = "";
};

[[noreturn]] void Refuse() {
    std::fputs(kUsage, stderr);
    std::exit(2);
}

TOptions Read(int argc, char** argv) {
    TOptions options;
    for (int i = 1; i < argc; ++i) {
        const auto is = [&](const char* name) { return std::strcmp(argv[i], name) == 0; };
        const auto next = [&] { return i + 1 < argc ? argv[++i] : (Refuse(), nullptr); };
        if (is("--rounds"))
            options.rounds = std::atoi(next());
        else if (is("--instances"))
            options.instances = static_cast<unsigned>(std::atoi(next()));
        else if (is("--only"))
            options.only = next();
        else if (is("--large"))
            options.large = true;
        else if (is("--counted"))
            options.counted = true;
        else
            Refuse();
    }
    if (options.rounds < 1 || options.instances < 1) Refuse();
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    const TOptions options = Read(argc, argv);
    TLogger::Initialize();
    if (options.counted) {
        PrintCounted();
        return 0;
    }
    TTable table(options.rounds, options.only);
    RaceTokenisers(table);
    RacePopulating(table, options.instances);
    RaceProperties(table, options.instances);
    RaceScale(table, options.large);
    RaceAssociations(table, options.large);
    RaceIsolation(table);
    table.PrintTargets();
}
