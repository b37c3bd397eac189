#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "Programs/Elevation/RootPart.h"

int main(int argc, char** argv) {
    // A batch that was authorized runs to its end, even if the one who asked is gone before.
    ::prctl(PR_SET_PDEATHSIG, 0);

    if (::geteuid() != 0) {
        std::cerr << "Administrator rights are used only by an installed Orvane (cmake --install, as root): "
                     "everything of yours could change this one.\n";
        return EXIT_FAILURE;
    }
    const char* const caller = std::getenv("PKEXEC_UID");
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (caller == nullptr || argc != 2 || error) {
        std::cerr << "orvane-remove-as-root: this is run by Orvane, through pkexec\n";
        return EXIT_FAILURE;
    }
    return orvane::removeAsRoot(argv[1], caller, self.parent_path() / "orvane-root-tool", std::cerr);
}
