#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace orvane {

template <typename Signature>
class FunctionRef;

/// A reference to a callable that outlives the call it is passed to. No allocation, one indirect call.
template <typename R, typename... Args>
class FunctionRef<R(Args...)> {
  public:
    template <typename F>
    requires(!std::is_same_v<std::remove_cvref_t<F>, FunctionRef> && std::is_invocable_r_v<R, F&, Args...>)
        FunctionRef(F&& f)  // NOLINT(google-explicit-constructor, bugprone-forwarding-reference-overload)
        : object_(const_cast<void*>(static_cast<const void*>(std::addressof(f)))),
          call_([](void* object, Args... args) -> R {
              return (*static_cast<std::remove_reference_t<F>*>(object))(std::forward<Args>(args)...);
          }) {}

    R operator()(Args... args) const { return call_(object_, std::forward<Args>(args)...); }

  private:
    void* object_;
    R (*call_)(void*, Args...);
};

}  // namespace orvane
