#pragma once

#include "Text/FunctionRef.h"

namespace orvane::test {

/// Runs `body` in a forked child that can harm nothing on this machine, however wrong the code under test: it
/// has mounts of its own, every one of them read-only, and an empty file system in memory in the place of the
/// folder for temporary files. No descriptor but the standard ones comes along, so the body makes what it
/// works on. It may mount and unmount. What fails, throws or is skipped in it is this test's; where the
/// kernel does not let this user have such mounts, the test is skipped.
void inPrivateMounts(FunctionRef<void()> body);

/// A test whose body, a member function of a class derived from `Fixture`, runs in private mounts: there the
/// fixture is made, too. It is a plain class.
#define PRIVATE_MOUNTS_TEST(Fixture, Name)                                  \
    struct Fixture##In##Name : Fixture {                                    \
        void run();                                                         \
    };                                                                      \
    TEST(Fixture, Name) {                                                   \
        ::orvane::test::inPrivateMounts([] { Fixture##In##Name().run(); }); \
    }                                                                       \
    void Fixture##In##Name::run()

}  // namespace orvane::test
