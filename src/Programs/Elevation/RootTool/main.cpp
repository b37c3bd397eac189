#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Linux/SealedMemory.h"
#include "Programs/Elevation/RootTool.h"

int main(int argc, char** argv) {
    using namespace orvane;
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const auto order = textInMemory(orderDescriptor, largestOrder);
    if (!order) {
        std::cerr << "orvane-root-tool: this is run by orvane-remove-as-root\n";
        return 2;
    }
    return runStep(arguments, {FileDescriptor(rootDescriptor), FileDescriptor(movedDescriptor)}, *order,
                   std::cerr);
}
