#pragma once

// From here on no thread can be started in this process, because each one asks for a stack of more
// than there are addresses. For children: there is no way back. Not for builds with a sanitizer,
// which ends the process there (kThreadsCanFail).
void AllowNoThread();

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kThreadsCanFail = false;
#else
inline constexpr bool kThreadsCanFail = true;
#endif
