#pragma once

#define RENAME_EXCL 0x00000004

extern "C" int renameatx_np(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags);
