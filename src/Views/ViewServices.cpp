#include "Views/ViewServices.h"

#include "Platform/Task.h"

namespace orvane {
namespace {

/// Keeps the library from its start to its end.
Task<void> run(std::shared_ptr<AppLibrary> library, Task<void> (AppLibrary::*operation)()) {
    co_await (*library.*operation)();
}

}  // namespace

void ViewServices::start(Task<void> (AppLibrary::*operation)()) const {
    spawn(mainExecutor, run(library, operation));
}

}  // namespace orvane
