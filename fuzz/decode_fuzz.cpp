// Bytes as one message of any PGN, with any length in its record: as wide lines, UTF-8 text, JSON and CSV,
// which have to agree; JSON and CSV are read by others' rules. See MessageHead for the first bytes.
#include "support/shown.h"

#include "support/forms.h"
#include "support/message_input.h"

using namespace pgn_vistel::test;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    const auto head = input.take<fuzz::MessageHead>();
    const N2KMsg msg = fuzz::message_of(head, input.rest());
    const UnitSelection& units = fuzz::units_of(head.unit);
    const bool plain = head.length % 2 != 0;
    const Definitions set = head.definitions();
    // One thing at a time. Lines in buffers of their own and a parser of JSON take ten times as long as the
    // rest.
    const int choice = head.number / 2 % 16;
    if (choice == 0) {
        check_shown(msg, plain, units, set);
    } else if (choice == 2) {
        lines_of(msg, plain, units, head.length % 300, set);
    } else {
        const Forms forms = forms_of(msg, plain, units, piece_room, set);
        if (choice == 1) fuzz::check_forms(msg, forms[1], forms[2]);
        require(is_json_line(forms[1]) && is_csv(forms[2]), "broken JSON or CSV");
    }
    return 0;
}
