#include "tests/MacOS/StandIns/SystemCallState.h"

namespace orvane::test {

SystemCallState& systemCallState() {
    static SystemCallState state;
    return state;
}

}  // namespace orvane::test
