#pragma once

// Everything is built with hidden visibility; what hosts bind to carries this mark. PGN_VISTEL_LOCAL takes a
// member of a marked class out again. On Windows PGN_VISTEL_STATIC says that the library is linked in as
// objects.
#if defined(_WIN32)
#if defined(PGN_VISTEL_BUILD)
#define PGN_VISTEL_API __declspec(dllexport)
#elif defined(PGN_VISTEL_STATIC)
#define PGN_VISTEL_API
#else
#define PGN_VISTEL_API __declspec(dllimport)
#endif
#define PGN_VISTEL_LOCAL
#else
#define PGN_VISTEL_API __attribute__((visibility("default")))
#define PGN_VISTEL_LOCAL __attribute__((visibility("hidden")))
#endif
