// Symbol visibility of the shared library.
#pragma once

#if defined(QELKERN_BUILDING)
#define QELKERN_API __attribute__((visibility("default")))
#else
#define QELKERN_API
#endif
