#pragma once

#include <sys/param.h>

struct statfs {
    char f_mntonname[MAXPATHLEN];
};

#define MNT_NOWAIT 2

extern "C" int getfsstat(struct statfs* buffer, int size, int mode);
