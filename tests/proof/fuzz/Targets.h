#pragma once

#include <array>
#include <string_view>

namespace orvane::test {

/// What a target is asked about: the program's own code, or a variant with one natural mistake, which a run
/// must find.
enum class Subject { own, wrong };

/// Each takes any bytes, gives them to one part of the program, and ends the process where a promise about
/// what comes of them does not hold.
void fuzzXMLPropertyList(std::string_view bytes, Subject subject);
void fuzzBinaryPropertyList(std::string_view bytes, Subject subject);
void fuzzOldStylePropertyList(std::string_view bytes, Subject subject);
void fuzzCatalog(std::string_view bytes, Subject subject);
void fuzzFileURL(std::string_view bytes, Subject subject);
void fuzzShellQuoting(std::string_view bytes, Subject subject);
void fuzzRemovalOrder(std::string_view bytes, Subject subject);

struct FuzzTarget {
    std::string_view name;
    void (*run)(std::string_view bytes, Subject subject);
};

constexpr std::array fuzzTargets{
    FuzzTarget{"xml", fuzzXMLPropertyList},
    FuzzTarget{"binary", fuzzBinaryPropertyList},
    FuzzTarget{"old-style", fuzzOldStylePropertyList},
    FuzzTarget{"catalog", fuzzCatalog},
    FuzzTarget{"url", fuzzFileURL},
    FuzzTarget{"quoting", fuzzShellQuoting},
    FuzzTarget{"order", fuzzRemovalOrder},
};

/// Ends the process with that text where a promise does not hold.
void promise(bool holds, const char* what);

}  // namespace orvane::test
