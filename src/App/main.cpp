#include "App/Support/Run.h"

int main(int argc, char** argv) {
    return orvane::app::run(argc, argv);
}
