#include "base/Orphans.h"

#include <sys/prctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <string>

namespace {

std::vector<pid_t> Children() {
    std::ifstream file("/proc/thread-self/children");
    std::vector<pid_t> children;
    for (pid_t child; file >> child;) children.push_back(child);
    return children;
}

}  // namespace

TOrphans::TOrphans() : fExisting(Children()) { prctl(PR_SET_CHILD_SUBREAPER, 1); }

TOrphans::~TOrphans() {
    EndAll();
    prctl(PR_SET_CHILD_SUBREAPER, 0);
}

// Each that ends may leave us children of its own. One that has become another user's is out of our reach.
void TOrphans::EndAll() const {
    const auto isSpared = [this](pid_t child) {
        return std::find(fExisting.begin(), fExisting.end(), child) != fExisting.end() || kill(child, SIGKILL) != 0;
    };
    for (;;) {
        std::vector<pid_t> left = Children();
        left.erase(std::remove_if(left.begin(), left.end(), isSpared), left.end());
        if (left.empty()) return;
        for (const pid_t child : left) waitpid(child, nullptr, 0);
    }
}
