#include "tests/Services/RemovalPlannerFixture.h"

namespace orvane {
namespace {

using testing::ElementsAre;

TEST_F(RemovalPlannerTest, ClaimsProcessesWithTheSameIdentifierOrOneThatContainsATerm) {
    EXPECT_THAT(services(foo, {running(4, "com.example.foo"), running(3, "COM.EXAMPLE.FOO.helper"),
                               running(2, "org.example.snafoo"), running(1, "com.example.bar")}),
                ElementsAre(4, 3, 2));
}

TEST_F(RemovalPlannerTest, ClaimsProcessesThatRunFromTheBundlesPath) {
    EXPECT_THAT(services(foo, {running(1, "org.example.other", "/Applications/Foo.app/Contents/MacOS/helper"),
                               running(2, std::nullopt, "/Applications/Foo.app/Contents/MacOS/Foo"),
                               running(3, "org.example.other", "/Applications/Foo.app2/Contents/MacOS/Foo2"),
                               running(4, "org.example.other", "/applications/Foo.app/Contents/MacOS/Foo"),
                               running(5, "org.example.other", "/Volumes/Applications/Foo.app/Foo"),
                               running(6, "org.example.other"), running(7, std::nullopt)}),
                ElementsAre(1, 2, 3));
}

TEST_F(RemovalPlannerTest, ClaimsEveryProcessWithoutIdentifierForAnApplicationWithoutOne) {
    EXPECT_THAT(
        services(anonymousFoo, {running(1, std::nullopt), running(2, "org.example.other"),
                                running(3, std::nullopt, "/usr/bin/other"), running(4, "org.example.foo")}),
        ElementsAre(1, 3, 4));
}

TEST_F(RemovalPlannerTest, DescribesAProcessAndNamesANamelessOneAfterTheApplication) {
    auto named = running(7, "com.example.foo", "/Applications/Foo.app/Contents/MacOS/Foo");
    named.localizedName = "Foo Helper";
    workspace.setRunningApplications({named, running(8, "com.example.foo")});
    EXPECT_THAT(plan(foo).runningServices,
                ElementsAre(RunningService{7, "Foo Helper", "/Applications/Foo.app/Contents/MacOS/Foo"},
                            RunningService{8, "Display Name", ""}));
}

}  // namespace
}  // namespace orvane
