#pragma once

// Everything is built with hidden visibility; what hosts bind to carries this mark. On Windows it says that
// the name comes out of a library, unless PGN_VISTEL_STATIC says that it is linked in; what the library lets
// out stands in its module definition.
#if !defined(_WIN32)
#define PGN_VISTEL_API __attribute__((visibility("default")))
#elif defined(PGN_VISTEL_STATIC)
#define PGN_VISTEL_API
#else
#define PGN_VISTEL_API __declspec(dllimport)
#endif
