#pragma once

/// @file
/// Everything that the shared library exports. A host that only decodes links the core library instead and
/// includes what it needs: core/render.h for a message as text, core/decode.h for its fields as values,
/// core/catalogue.h for the tables.

#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/n2k_msg.h"
#include "pgn_vistel/pgn_db.h"
#include "pgn_vistel/pgn_dlg.h"
#include "pgn_vistel/pgn_tree.h"
#include "pgn_vistel/unit_dlg.h"
