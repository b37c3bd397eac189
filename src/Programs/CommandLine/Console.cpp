#include "Programs/CommandLine/Console.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <iostream>

#include "Text/UTF8.h"

namespace orvane::commandline {
namespace {

constexpr auto firstTick = std::chrono::milliseconds(300);
constexpr auto laterTicks = std::chrono::milliseconds(100);
constexpr std::array frames{"⠋", "⠙", "⠹", "⠸", "⠼", "⠴", "⠦", "⠧", "⠇", "⠏"};

}  // namespace

std::size_t columnWidth(std::string_view text) {
    if (isPlainASCII(text)) return text.size();
    std::size_t width = 0;
    forEachCodePoint(text, [&](UChar32 character, std::string_view) {
        if (character >= ' ' && character <= '~') {
            ++width;
            return;
        }
        const auto category = u_charType(character);
        if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR)
            return;
        const auto eastAsian = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
        width += eastAsian == U_EA_WIDE || eastAsian == U_EA_FULLWIDTH ? 2 : 1;
    });
    return width;
}

void complain(std::string_view line) {
    write(stderr, "orvane-cli: " + printable(line) + "\n");
}

bool print(std::string_view text) {
    const bool isWritten = write(stdout, text);
    if (!isWritten) complain("the output could not be written");
    return isWritten;
}

bool confirm(std::string_view question) {
    write(stderr, std::string(question) + " [y/N] ");
    std::string answer;
    if (!std::getline(std::cin, answer)) return false;
    return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
}

bool isTerminal(std::FILE* stream) {
    return ::isatty(::fileno(stream)) == 1;
}

Progress::Progress(const asio::any_io_executor& executor, std::string label)
    : timer_(executor), label_(std::move(label)) {
    if (isTerminal(stderr)) wait(firstTick);
}

Progress::~Progress() {
    *isAlive_ = false;
    timer_.cancel();
    if (step_ > 0) write(stderr, "\r\x1b[K");
}

void Progress::wait(std::chrono::milliseconds delay) {
    timer_.expires_after(delay);
    timer_.async_wait([this, isAlive = isAlive_](const asio::error_code& error) {
        if (error || !*isAlive) return;
        write(stderr, std::string("\r\x1b[K") + frames[step_++ % frames.size()] + " " + label_);
        wait(laterTicks);
    });
}

}  // namespace orvane::commandline
