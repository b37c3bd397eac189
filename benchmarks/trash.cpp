// Moves everything in a folder of a home to its Trash: as the window's review does, by the program's own
// service, or by nothing but one renameat2 for each.
//
//     orvane-trash service|bare ROOT HOME FOLDER
//
// ROOT is a volume, HOME and FOLDER are paths on it. Prints how many have gone, and in how many seconds: the
// list and the program's objects are made before that.
#include <fcntl.h>
#include <unistd.h>

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <vector>

#include "Programs/ObjectGraph.h"

namespace {

using namespace orvane;

struct Context : asio::io_context {};

using Clock = std::chrono::steady_clock;

struct Outcome {
    std::size_t moved = 0;
    Clock::duration took{};
};

Outcome moveByService(Machine machine, std::vector<RelatedItem> items, ReviewedPlan reviewed) {
    // The program is there already when somebody presses the button.
    ObjectGraph<Context> graph(std::move(machine));
    const auto service = graph.makeRemovalService();
    RemovalResult result;
    const auto begun = Clock::now();
    asio::co_spawn(
        graph.main(),
        [&]() -> Task<void> {
            result = co_await service->moveToTrash(std::move(items), {}, std::move(reviewed));
        },
        asio::detached);
    graph.main().run();
    const auto took = Clock::now() - begun;
    for (const auto& failed : result.failed) std::fprintf(stderr, "%s\n", failed.reason.c_str());
    return {result.removed.size(), took};
}

Outcome moveBarely(const std::string& root, const std::string& home, const std::string& folder,
                   const std::vector<std::string>& names) {
    const int from = ::open((root + folder).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const int to = ::open((root + home + "/.Trash").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    std::size_t moved = 0;
    const auto begun = Clock::now();
    for (const auto& name : names) {
        if (::renameat2(from, name.c_str(), to, name.c_str(), RENAME_NOREPLACE) == 0) ++moved;
    }
    const auto took = Clock::now() - begun;
    ::close(from);
    ::close(to);
    return {moved, took};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("usage: orvane-trash service|bare ROOT HOME FOLDER\n", stderr);
        return 2;
    }
    const std::string root = argv[2];
    const std::string home = argv[3];
    const std::string folder = argv[4];
    auto machine = makeMachine({.root = root, .home = home, .rootPart = std::nullopt});
    if (!machine) {
        std::fprintf(stderr, "%s\n", machine.error().c_str());
        return 1;
    }
    const auto place = FileURL::fromPath(folder, true);
    const auto identity = machine->fileManager->identity(place);
    const auto entries = machine->fileManager->contentsOfDirectory(place, {});
    if (!identity || !entries) {
        std::perror(argv[4]);
        return 1;
    }
    std::vector<RelatedItem> items;
    std::vector<std::string> names;
    ReviewedPlan reviewed;
    for (const auto& entry : *entries) {
        auto& item = items.emplace_back();
        item.url = entry.url;
        names.push_back(entry.url.lastPathComponent());
        reviewed.folders.emplace(item.id(), *identity);
    }
    const auto count = names.size();
    const auto outcome = std::string_view(argv[1]) == "service"
                             ? moveByService(std::move(*machine), std::move(items), std::move(reviewed))
                             : moveBarely(root, home, folder, names);
    std::printf("%zu %.6f\n", outcome.moved, std::chrono::duration<double>(outcome.took).count());
    return outcome.moved == count ? 0 : 1;
}
