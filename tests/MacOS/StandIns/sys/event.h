#pragma once

#include <cstdint>
#include <ctime>

// The kernel's queue of events, as far as it tells of the end of a process.
struct kevent {
    uintptr_t ident;
    int16_t filter;
    uint16_t flags;
    uint32_t fflags;
    intptr_t data;
    void* udata;
};

#define EVFILT_PROC (-5)
#define EV_ADD 0x0001
#define EV_ONESHOT 0x0010
#define NOTE_EXIT 0x80000000U
#define EV_SET(event, a, b, c, d, e, f) (*(event) = {(a), (b), (c), (d), (e), (f)})

extern "C" int kqueue();
extern "C" int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events,
                      int eventCount, const timespec* timeout);
