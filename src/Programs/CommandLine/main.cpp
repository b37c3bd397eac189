#include "Programs/CommandLine/CommandLine.h"

int main(int argc, char** argv) {
    return orvane::commandline::run(argc, argv);
}
