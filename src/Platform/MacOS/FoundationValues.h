#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

// Between the values of Foundation and ours. All of it is called inside `asked`.

/// The URL of a path, byte for byte. Nil for a path that is not absolute or holds a NUL.
NSURL* urlOf(std::string_view path, bool isDirectory);

/// The path of a file's URL, byte for byte; absent for nil and for any other URL.
std::optional<std::string> pathOf(NSURL* url);

/// A text as UTF-8; absent for nil, for what is no text, and for one that is not well-formed.
std::optional<std::string> textOf(id value);

/// What asking the system gives, with a pool for what it makes meanwhile. Whatever the system throws ends
/// here: then it is the fallback.
template <typename Answer, typename Ask>
Answer asked(Answer fallback, Ask ask) {
    @autoreleasepool {
        @try {
            return ask();
        } @catch (NSException*) {
            return fallback;
        }
    }
}

}  // namespace orvane
