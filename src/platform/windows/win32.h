// The system's own headers, which come in here alone: they define names as macros that others use as names.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// The rest needs what stands above.
#include <psapi.h>
#include <shellapi.h>
#include <shlobj.h>
#include <tlhelp32.h>

#undef CreateFile
#undef DeleteFile
#undef interface
