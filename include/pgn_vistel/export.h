#pragma once

// Everything is built with hidden visibility; what hosts bind to carries this mark.
#if defined(__GNUC__)
#define PGN_VISTEL_API __attribute__((visibility("default")))
#else
#define PGN_VISTEL_API
#endif
