// Bytes as one message of any PGN, with any length in its record: as wide lines, UTF-8 text, JSON and CSV,
// which have to agree; JSON and CSV are read by others' rules. See MessageHead for the first bytes.
#include "support/shown.h"

#include <numeric>
#include <span>

#include "support/forms.h"
#include "support/message_input.h"

using namespace pgn_vistel::test;

namespace {

bool is_replay = false;  // of inputs that all is tried with

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    const std::span<char*> given(*arguments, static_cast<std::size_t>(*count));
    is_replay = std::ranges::any_of(given, [](std::string_view argument) { return argument == "-runs=0"; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    const auto head = input.take<fuzz::MessageHead>();
    const N2KMsg msg = fuzz::message_of(head, input.rest());
    const UnitSelection& units = fuzz::units_of(head.unit);
    const bool plain = head.length % 2 != 0;
    const Definitions set = head.definitions();
    // Mostly the forms alone: lines in buffers of their own and a parser of JSON take ten times as long. All
    // bytes say which, so that what grows from an input does not inherit it.
    const unsigned choice = std::accumulate(bytes, bytes + size, 0u) % 64;
    if (choice == 0 || is_replay) check_shown(msg, plain, units, set);
    if (choice == 1 || is_replay) lines_of(msg, plain, units, head.length % 300, set);
    if (choice > 1 || is_replay) {
        const Forms forms = forms_of(msg, plain, units, piece_room, set);
        if (choice == 2 || is_replay) fuzz::check_forms(msg, forms[1], forms[2]);
        require(is_json_line(forms[1]) && is_csv(forms[2]), "broken JSON or CSV");
    }
    return 0;
}
