#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tests/Fixtures/ShellRunner.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Services/RemovalTruth.h"

namespace orvane::test {

/// A disk of an application's leftovers and a batch of some of them, all chosen by one number: the user's own
/// items and the administrator's, missing ones, some that nobody can remove, same-named ones, links, items in
/// items, protected folders, and others that are kept.
struct RandomBatch {
    bool isToTrash = false;
    ShellRunner::Ending ending = ShellRunner::Ending::runs;
    std::vector<ObservedRemoval::Item> items;
};

/// Where only the administrator may write, and where nobody may.
inline constexpr const char* lockedFolder = "/Library/Locked";
inline constexpr const char* stubbornFolder = "/Library/Stubborn";

/// Empties the volume's root, fills it again and chooses.
class RandomBatchMaker {
  public:
    RandomBatchMaker(const TestVolume& volume, std::uint64_t seed) : volume_(volume), random_(seed) {}

    RandomBatch make();

  private:
    std::size_t below(std::size_t limit);
    bool isIt(unsigned percent) { return below(100) < percent; }
    template <typename T>
    const T& oneOf(const std::vector<T>& list) {
        return list[below(list.size())];
    }

    void makeFolders();
    void makeTrash();
    void makeEntry(const std::string& path);
    void makeContents(const std::string& folder);
    std::string linkTarget();
    std::string spelled(const std::string& path);
    void choose(const std::string& path, unsigned percent);
    void addRefused();

    const TestVolume& volume_;
    std::mt19937_64 random_;
    RandomBatch batch_;
    std::vector<std::string> made_;
};

}  // namespace orvane::test
