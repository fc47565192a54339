// What the shared library exports: everything a public header declares, nothing else. The
// library is compiled with hidden visibility; each public header opens its declarations with
// VRDPPO_PUBLIC_BEGIN and closes them with VRDPPO_PUBLIC_END.
#pragma once

#if defined(__GNUC__) && !defined(_WIN32)
#define VRDPPO_PUBLIC_BEGIN _Pragma("GCC visibility push(default)")
#define VRDPPO_PUBLIC_END _Pragma("GCC visibility pop")
#else
#define VRDPPO_PUBLIC_BEGIN
#define VRDPPO_PUBLIC_END
#endif
