#include "monitor/message_text.h"

#include <vector>

#include "network/message_view.h"
#include "output/record_text.h"
#include "pgn_vistel/core/render.h"
#include "text/words.h"

namespace vistel {

namespace core = pgn_vistel::core;

namespace {

template <class Renderer>
std::string rendered(Renderer& renderer) {
    std::string text;
    std::vector<char> area(2 * core::piece_room);
    while (!renderer.is_done())
        text.append(area.data(), renderer.write(area.data(), area.data() + area.size()));
    return text;
}

}  // namespace

std::string as_text(const Stream& stream, std::string_view bus, const core::UnitSelection& units,
                    core::Definitions definitions) {
    core::TextRenderer renderer(units, false);
    renderer.start(stream.msg(), core::find_definition(definitions, stream.msg()),
                   {.since_start = stream.seen()});
    std::string text = rendered(renderer);
    if (!bus.empty()) text.insert(text.find('\n'), concat(" [", bus, "]"));
    return text;
}

std::string as_json(const Stream& stream, std::string_view bus, core::Definitions definitions) {
    core::JsonRenderer renderer(core::UnitSelection::si());
    renderer.start(stream.msg(), core::find_definition(definitions, stream.msg()),
                   {.since_start = stream.seen()});
    std::string text = rendered(renderer);
    if (!bus.empty()) {
        std::string head = R"({"bus":)";
        append_json(head, bus);
        text.replace(0, 1, head + ",");
    }
    return text;
}

std::string key_of_field(const N2KMsg& msg, std::size_t position, core::Definitions definitions) {
    const core::UnitSelection units;
    MessageView view(msg, units, definitions);
    for (std::size_t i = 0; view.next(); ++i)
        if (i == position) return std::string(core::field_key(view.field()));
    return {};
}

}  // namespace vistel
