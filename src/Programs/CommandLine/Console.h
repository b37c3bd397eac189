#pragma once

#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "Programs/Output.h"

namespace orvane::commandline {

/// The number of terminal columns that a text takes.
std::size_t columnWidth(std::string_view text);

/// One line about why nothing was done, on standard error.
void complain(std::string_view line);

/// Writes the answer to standard output, and complains where that cannot be done.
bool print(std::string_view text);

/// Asks a question on standard error and reads the answer from standard input; yes only for "y" or "yes".
bool confirm(std::string_view question);

bool isTerminal(std::FILE* stream);

/// A moving line on standard error for as long as it lives, where that is a terminal; nothing elsewhere. Runs
/// on the executor of the caller, who keeps that running.
class Progress {
  public:
    Progress(const asio::any_io_executor& executor, std::string label);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

  private:
    void wait(std::chrono::milliseconds delay);

    asio::steady_timer timer_;
    std::string label_;
    std::size_t step_ = 0;
    /// Held by each pending wait, so that one that was already due finds out that this is gone.
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

}  // namespace orvane::commandline
