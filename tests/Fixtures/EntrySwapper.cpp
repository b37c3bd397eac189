#include "tests/Fixtures/EntrySwapper.h"

#include <chrono>
#include <random>
#include <system_error>

#include "tests/Fixtures/KernelSettings.h"

namespace orvane::test {

EntrySwapper::EntrySwapper() : thread_([this] { work(); }) {}

EntrySwapper::~EntrySwapper() {
    isOver_ = true;
    thread_.join();
}

void EntrySwapper::start(const std::string& a, const std::string& b) {
    a_ = a;
    b_ = b;
    swaps_ = 0;
    mayWork_ = true;
    while (swaps_ == 0) std::this_thread::yield();
}

std::uint64_t EntrySwapper::stop() {
    mayWork_ = false;
    while (isWorking_) std::this_thread::yield();
    return swaps_;
}

void EntrySwapper::work() {
    std::minstd_rand random;
    while (!isOver_) {
        // Said before it is asked: who forbids it sees it, or is seen.
        isWorking_ = true;
        if (mayWork_) {
            swap();
            // In any rhythm: whoever asks for a path while something is renamed has to ask again, and would
            // do so for ever.
            if (random() % 8 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 100));
        } else {
            isWorking_ = false;
            std::this_thread::yield();
        }
    }
}

void EntrySwapper::swap() {
    try {
        exchangeEntries(a_, b_);
        ++swaps_;
    } catch (const std::system_error&) {
        std::this_thread::yield();
    }
}

}  // namespace orvane::test
