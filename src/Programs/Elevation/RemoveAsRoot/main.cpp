#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include "Programs/Elevation/RootPart.h"

int main(int argc, char** argv) {
    // A batch that was authorized runs to its end, even if the one who asked is gone before.
    ::prctl(PR_SET_PDEATHSIG, 0);

    const char* const caller = std::getenv("PKEXEC_UID");
    if (::geteuid() != 0 || caller == nullptr || argc != 2) {
        std::cerr << "orvane-remove-as-root: this is run by orvane-elevate, through pkexec\n";
        return EXIT_FAILURE;
    }
    return orvane::removeAsRoot(argv[1], caller, {{"/bin/sh", "-s"}}, std::cerr);
}
