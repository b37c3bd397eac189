#include "Programs/Window/Run.h"

int main(int argc, char** argv) {
    return orvane::window::run(argc, argv);
}
