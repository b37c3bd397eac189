#include "tests/Programs/Elevation/InstalledRootPart.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "Platform/Linux/SealedMemory.h"
#include "Platform/Posix/Process.h"
#include "tests/Fixtures/Paths.h"

namespace orvane::test {

InstalledRootPart::Programs InstalledRootPart::builtPrograms() {
    Programs programs;
    for (const auto* const name : {"orvane-remove-as-root", "orvane-root-tool"}) {
        programs[name] = readFile(binaryDirectory() + "/" + name);
    }
    return programs;
}

InstalledRootPart::InstalledRootPart(const Programs& programs) {
    for (const auto& [name, bytes] : programs) {
        const auto file = directory_.makeFile("libexec/" + name, bytes);
        ::chmod(file.c_str(), 0755);
    }
}

int InstalledRootPart::run(const Call& call) const {
    const std::vector<std::string> environment{"PKEXEC_UID=" + call.caller};
    const auto input = sealedMemory(call.text).value();
    const FileDescriptor silence(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    return waitForTermination(startProgram({directory_.path("libexec/orvane-remove-as-root"), call.announced},
                                           {.standardInput = input.get(),
                                            .standardError = silence.get(),
                                            .environment = &environment,
                                            .folder = "/"})
                                  .value());
}

}  // namespace orvane::test
