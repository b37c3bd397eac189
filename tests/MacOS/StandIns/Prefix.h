#pragma once

// Included before anything else where the Mac's own files are compiled on Linux: what the Mac's headers have
// and these do not. Each name stands for exactly the Mac's one; what it does is in the files beside.

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>

// Of <fcntl.h>. `openat` and `fcntl` are wrapped when the tests are linked, and know these.
#define O_SEARCH (O_PATH | O_DIRECTORY)
#define O_NOFOLLOW_ANY 0x20000000
#define F_GETPATH 0x10000050
#define F_FULLFSYNC 0x10000051

// Of <sys/stat.h>. `fstat` and `fstatat` are wrapped, too, and fill in the flags.
#define st_flags __glibc_reserved[0]
#define st_mtimespec st_mtim
#define UF_IMMUTABLE 0x00000002
#define UF_APPEND 0x00000004
#define SF_IMMUTABLE 0x00020000
#define SF_APPEND 0x00040000
#define SF_RESTRICTED 0x00080000
#define SF_NOUNLINK 0x00100000

// Of <signal.h>, where they are macros.
#define sigemptyset(set) (::sigemptyset(set), 0)
#define sigaddset(set, signal) (::sigaddset(set, signal), 0)

// Of <spawn.h>: here it is the descriptors' being inherited that closes the others.
#define POSIX_SPAWN_CLOEXEC_DEFAULT 0
extern "C" int posix_spawn_file_actions_addinherit_np(posix_spawn_file_actions_t* actions, int descriptor);

#ifdef __OBJC__
#import <Foundation/Foundation.h>

@interface NSURL (StandIn)
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDirectory
                                relativeToURL:(NSURL*)baseURL;
@property(readonly) const char* fileSystemRepresentation;
@end

@interface NSFileManager (StandIn)
@property(readonly, copy) NSURL* homeDirectoryForCurrentUser;
- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory inDomains:(NSSearchPathDomainMask)domains;
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)resultingURL error:(NSError**)error;
@end
#endif
