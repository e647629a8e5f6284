// Decodes one message with the installed core library, as lines for a window and as JSON.

#include <cstdio>
#include <string_view>

#include "message.h"
#include "pgn_vistel/core/render.h"

using namespace pgn_vistel::core;

int main() {
    std::printf("%d units\n", unit::count);
    const N2KMsg msg = speed_message();
    const PgnDef* const pgn = find_pgn_def(msg.pgn);
    const UnitSelection units;
    TextScratch scratch;
    StreamLines lines(pgn, msg, units, scratch, false);
    wchar_t line[line_size];
    while (lines.next(line, line_size) >= 0) std::printf("%ls\n", line);

    static char object[2 * piece_room];  // more than this message ever takes
    JsonRenderer json(units);
    json.start(msg, pgn, {});
    const std::string_view text(object, json.write(object, object + sizeof object));
    return json.is_done() && text.find("\"value\":3.88") != text.npos ? 0 : 1;
}
