// Decodes one message with the installed core library.

#include <cstdio>

#include "message.h"
#include "pgn_vistel/stream_lines.h"

int main() {
    std::printf("%u units\n", GetUnitDataType_Num());
    const N2KMsg msg = speed_message();
    pgn_vistel::StreamLines lines(qv_n2k_pgn_db, pgn_vistel::find_pgn_def(msg.pgn), msg, 0);
    wchar_t line[pgn_vistel::line_size];
    while (lines.next(line, pgn_vistel::line_size) >= 0) std::printf("%ls\n", line);
}
