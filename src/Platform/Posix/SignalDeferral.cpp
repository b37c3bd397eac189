#include "Platform/Posix/SignalDeferral.h"

#include <array>
#include <csignal>
#include <mutex>

namespace orvane {

namespace {

constexpr std::array requestsToEnd{SIGHUP, SIGINT, SIGQUIT, SIGTERM};

// A signal's handler belongs to the whole process, and so does what it needs.
std::mutex deferralMutex;
int deferralCount = 0;
std::array<bool, requestsToEnd.size()> isDeferred{};
std::array<volatile std::sig_atomic_t, requestsToEnd.size()> hasArrived{};

void remember(int signal) {
    for (std::size_t index = 0; index < requestsToEnd.size(); ++index) {
        if (requestsToEnd[index] == signal) hasArrived[index] = 1;
    }
}

}  // namespace

SignalDeferral::SignalDeferral() {
    const std::scoped_lock lock(deferralMutex);
    if (deferralCount++ != 0) return;
    for (std::size_t index = 0; index < requestsToEnd.size(); ++index) {
        struct sigaction action {};
        ::sigaction(requestsToEnd[index], nullptr, &action);
        isDeferred[index] = action.sa_handler == SIG_DFL;
        if (!isDeferred[index]) continue;
        hasArrived[index] = 0;
        action = {};
        action.sa_handler = remember;
        action.sa_flags = SA_RESTART;
        ::sigaction(requestsToEnd[index], &action, nullptr);
    }
}

SignalDeferral::~SignalDeferral() {
    const std::scoped_lock lock(deferralMutex);
    if (--deferralCount != 0) return;
    for (std::size_t index = 0; index < requestsToEnd.size(); ++index) {
        if (!isDeferred[index]) continue;
        ::signal(requestsToEnd[index], SIG_DFL);
        if (hasArrived[index] != 0) ::raise(requestsToEnd[index]);
    }
}

}  // namespace orvane
