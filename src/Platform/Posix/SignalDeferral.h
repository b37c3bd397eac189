#pragma once

namespace orvane {

/// Holds back, for as long as it lives, the signals that ask this process to end (SIGHUP, SIGINT, SIGQUIT,
/// SIGTERM), for steps that must not be left half done. One that arrives meanwhile, in whatever thread, is
/// raised again when the last of these ends. One that the process ignores or handles itself stays as it is.
/// SIGKILL and a power failure cannot be held back. For any thread.
class SignalDeferral {
  public:
    SignalDeferral();
    ~SignalDeferral();
    SignalDeferral(const SignalDeferral&) = delete;
    SignalDeferral& operator=(const SignalDeferral&) = delete;
};

}  // namespace orvane
