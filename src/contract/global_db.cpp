#include "pgn_vistel/pgn_db.h"

// Of the decoder alone. The shared library has its own, which has its place in the order of loading.
QV_N2K_PGN_DB_c qv_n2k_pgn_db;
