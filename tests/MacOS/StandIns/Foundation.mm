#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "tests/MacOS/StandIns/StandIns.h"

using orvane::test::Mishap;
using orvane::test::StandInMac;

namespace {

NSURL* urlOfPath(std::string_view path) {
    return [NSURL fileURLWithFileSystemRepresentation:std::string(path).c_str()
                                          isDirectory:NO
                                        relativeToURL:nil];
}

NSError* standInError() {
    const auto& mac = StandInMac::current();
    NSDictionary* information = nil;
    if (mac.kernelError != 0) {
        NSError* const below = [NSError errorWithDomain:NSPOSIXErrorDomain code:mac.kernelError userInfo:nil];
        information = @{NSUnderlyingErrorKey : below};
    }
    return [NSError errorWithDomain:NSCocoaErrorDomain code:mac.foundationError userInfo:information];
}

NSError* errorOfKernel(int error) {
    NSError* const below = [NSError errorWithDomain:NSPOSIXErrorDomain code:error userInfo:nil];
    return [NSError errorWithDomain:NSCocoaErrorDomain
                               code:error == ENOENT ? 4 : 513
                           userInfo:@{NSUnderlyingErrorKey : below}];
}

/// Moves as the Mac does: into the Trash, and beside what has the name there under one with the time of day
/// in it.
int moveToTrash(const std::string& path, std::string& place) {
    const auto trash = StandInMac::current().home + "/.Trash/";
    const auto name = path.substr(path.rfind('/') + 1);
    const auto dot = name.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot != 0;
    const auto base = hasExtension ? name.substr(0, dot) : name;
    const auto extension = hasExtension ? name.substr(dot) : std::string();
    for (int attempt = 0;; ++attempt) {
        char time[16] = "";
        if (attempt != 0) std::snprintf(time, sizeof time, " 12.00.%02d", attempt);
        place = trash + base + time + extension;
        if (::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, place.c_str(), RENAME_NOREPLACE) == 0) return 0;
        if (errno != EEXIST) return errno;
    }
}

}  // namespace

@implementation NSURL (StandIn)
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDirectory
                                relativeToURL:(NSURL*)baseURL {
    static_cast<void>(baseURL);
    std::string text = "file://";
    for (const char* each = path; *each != '\0'; ++each) {
        constexpr std::string_view plain =
            "/abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.~";
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(*each)));
        text += plain.find(*each) == std::string_view::npos ? std::string(escaped) : std::string(1, *each);
    }
    if (isDirectory && !text.ends_with('/')) text += '/';
    return [NSURL URLWithString:[NSString stringWithUTF8String:text.c_str()]];
}

- (const char*)fileSystemRepresentation {
    std::string_view text = [[self absoluteString] UTF8String];
    text.remove_prefix(std::strlen("file://"));
    std::string path;
    while (!text.empty()) {
        unsigned byte = 0;
        const bool isEscaped = std::sscanf(std::string(text.substr(0, 3)).c_str(), "%%%2x", &byte) == 1;
        path += isEscaped ? static_cast<char>(byte) : text.front();
        text.remove_prefix(isEscaped ? 3 : 1);
    }
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    // It lives as long as the pool around it.
    NSData* const bytes = [NSData dataWithBytes:path.c_str() length:path.size() + 1];
    return static_cast<const char*>([bytes bytes]);
}
@end

// GNUstep's own asks the environment.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"
@implementation NSLocale (StandIn)
+ (NSArray*)preferredLanguages {
    if (StandInMac::current().mishap == Mishap::exception) {
        [NSException raise:NSGenericException format:@"languages"];
    }
    return StandInMac::current().languages;
}
@end
#pragma clang diagnostic pop

@implementation NSFileManager (StandIn)
- (NSURL*)homeDirectoryForCurrentUser {
    if (StandInMac::current().mishap == Mishap::exception)
        [NSException raise:NSGenericException format:@"home"];
    const auto& home = StandInMac::current().home;
    return home.empty() ? nil : urlOfPath(home);
}

- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory inDomains:(NSSearchPathDomainMask)domains {
    const auto& folder = StandInMac::current().applicationSupport;
    if (directory != NSApplicationSupportDirectory || domains != NSUserDomainMask || folder.empty())
        return @[];
    return @[ urlOfPath(folder) ];
}

- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)resultingURL error:(NSError**)error {
    const auto& mac = StandInMac::current();
    if (mac.mishap == Mishap::exception) [NSException raise:NSGenericException format:@"trash"];
    if (mac.beforeTrashing != nullptr) mac.beforeTrashing();
    if (mac.mishap != Mishap::none) {
        if (mac.mishap == Mishap::failure) *error = standInError();
        return NO;
    }
    std::string place;
    if (const int failure = moveToTrash([url fileSystemRepresentation], place); failure != 0) {
        *error = errorOfKernel(failure);
        return NO;
    }
    if (resultingURL != nullptr) *resultingURL = urlOfPath(place);
    return YES;
}
@end
