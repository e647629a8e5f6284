// Messages of a bus as the monitor keeps them: the tree with its lines (on the control of the platform that
// needs no display), streams, devices and what is asked of them. Messages follow each other in an input, each
// behind its head (see MessageHead) and two bytes: sizes of its payload and of the pause before it.
#include "can/transport_protocol.h"
#include "contract/asked_fields.h"
#include "network/network.h"
#include "network/questions.h"
#include "network/streams.h"
#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/pgn_tree.h"
#include "support/message_input.h"
#include "support/shown.h"

namespace {

using namespace vistel;
using namespace pgn_vistel::core;
using fuzz::require;
namespace test = pgn_vistel::test;

constexpr unsigned long plain_numbers = 2, most_streams = 12;

/// A line as the tree shows it: separators of lines and paragraphs are not its control's.
std::string shown(std::wstring line) {
    const auto breaks = [](wchar_t c) { return c == 0x2028 || c == 0x2029; };
    std::ranges::replace_if(line, breaks, wchar_t{0xFFFD});
    return test::as_utf8(line);
}

/// The tree shows the message in the stream that it belongs to.
void check_tree(const CTreeCtrl& control, const N2KMsg& msg, Definitions set,
                const std::vector<std::wstring>& wanted) {
    const std::string label = test::as_utf8(test::stream_line(msg, line_size, set));
    for (const auto* top = control.GetChildItem(nullptr); top != nullptr;
         top = control.GetNextSiblingItem(top)) {
        if (test::as_utf8(control.GetItemText(top)) != label) continue;
        std::size_t at = 0;
        const auto* line = control.GetChildItem(top);
        for (; line != nullptr && at < wanted.size(); line = control.GetNextSiblingItem(line), ++at)
            if (test::as_utf8(control.GetItemText(line)) != shown(wanted[at])) break;
        if (line == nullptr && at == wanted.size()) return;
    }
    require(false, "the tree has the lines of the message");
}

void check(const Network& network, std::uint64_t put, std::uint64_t lost) {
    require(network.messages().total.messages == put, "every message is counted");
    require(network.lost() == lost, "every loss is counted");
    std::uint64_t of_devices = 0;
    std::array<bool, 256> taken{};
    const auto devices = network.devices();
    require(devices.size() <= Network::most_devices, "devices are bounded");
    for (const Device* const device : devices) {
        of_devices += device->messages.total.messages;
        std::uint64_t of_pgns = 0;
        for (const auto& [pgn, tally] : device->pgns) of_pgns += tally.messages.total.messages;
        require(of_pgns == device->messages.total.messages, "a device's messages are those of its PGNs");
        require(device->pgns.size() <= Device::most_pgns + 1, "PGNs are bounded");
        if (!device->address) continue;
        require(!std::exchange(taken[*device->address], *device->address < null_address),
                "one device an address");
        require(device->state != Device::State::displaced, "who has an address is not displaced");
        title_of(*device);
        notes_on(*device, network.now());
    }
    require(of_devices == put, "every message is a device's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    const auto options = input.take<std::uint8_t>();
    const Definitions set = options % 2 == 0 ? Definitions::fixed : Definitions::corrected;
    CTreeCtrl control;
    PGN_VistelTree_c tree(nullptr, &control, most_streams,
                          plain_numbers | (options % 2 == 0 ? 0 : PGN_VISTEL_CORRECTED_DEFINITIONS));
    tree.OnInit();
    test::forget_texts();
    TextScratch scratch;  // has seen what the trees' own has since
    const UnitSelection units;
    std::vector<std::wstring> wanted;
    Network network;
    Streams streams;
    std::uint64_t asked = 0;
    Questions questions([&asked](const N2KMsg& msg) {
        require(msg.pgn == 59904 && msg.length == 3, "a question is a request");
        ++asked;
        return asked % 3 != 0;
    });
    std::uint64_t put = 0, counted = 0, lost = 0;
    std::int64_t now = 0;
    while (!input.empty()) {
        auto head = input.take<fuzz::MessageHead>();
        head.mode = static_cast<std::uint8_t>((head.mode & ~24) | (options % 2 == 0 ? 0 : 16));
        const auto payload = input.take<std::uint8_t>();
        const auto pause = input.take<std::int8_t>();
        N2KMsg msg = fuzz::message_of(head, input.take_bytes(payload));
        msg.source = static_cast<std::uint8_t>(head.mode >> 5 | (head.unit & 0x80));
        now += std::int64_t{pause} * 100'000'000;
        const RecordTime time{now, RecordTime::Origin::start};
        ++put;
        // Those of the transport protocol are pieces of messages.
        counted += msg.pgn != transport_protocol::control_pgn && msg.pgn != transport_protocol::data_pgn;
        const std::size_t streams_before = streams.size();
        require(streams.put(msg, 0, now), "there is room for a few streams");
        require(streams.size() - streams_before <= 1, "a message is one stream's");
        network.put(msg, time);
        network.count_wire({Record::Kind::message, 0, msg, time}, set);
        if (payload % 16 == 15) network.count_lost(msg.source, 1), ++lost;
        if (payload % 32 == 7) network.turn();
        questions.advance(network, now);
        switch (tree.PutMsg(&msg)) {
            case 0:
                wanted = test::lines_of(StreamLines(find_definition(set, msg), msg, units, scratch, true));
                if (options & 2) check_tree(control, msg, set, wanted);
                break;
            case -1: tree.ClearMsg(); break;
            default: require(false, "nobody paused the tree");
        }
    }
    check(network, counted, lost);
    require(streams.messages() == put && streams.refused() == 0, "every message is a stream's");
    streams.select({}, static_cast<StreamOrder>(options >> 2 & 3), now, {}, set);
    return 0;
}
