// Decodes one message with the installed core library.

#include <cstdio>

#include "pgn_vistel/stream_lines.h"

int main() {
    N2KMsg msg{};
    msg.pgn = 128259;
    msg.destination = 255;
    msg.length = 8;
    const unsigned char payload[] = {0x01, 0xC8, 0x00, 0xFF, 0xFF, 0x00, 0xFF, 0xFF};  // 2.00 m/s
    for (int i = 0; i < 8; ++i) msg.data[i] = payload[i];

    pgn_vistel::StreamLines lines(qv_n2k_pgn_db, pgn_vistel::find_pgn_def(msg.pgn), msg, 0);
    wchar_t line[pgn_vistel::line_size];
    while (lines.next(line, pgn_vistel::line_size) >= 0) std::printf("%ls\n", line);
}
