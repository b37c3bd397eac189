// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizers look for these names.
// What the sanitizers are told about Qt, which is built without them: it keeps some of what it makes for as
// long as the program runs, and locks in ways that the thread sanitizer cannot see.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libQt6\nleak:libfontconfig\n";
}
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
    return "ignore_noninstrumented_modules=1";
}
// NOLINTEND(bugprone-reserved-identifier)
