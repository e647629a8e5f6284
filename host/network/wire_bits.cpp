#include "network/wire_bits.h"

namespace vistel {

namespace {

/// The bits of a frame one after the other, as a controller sends them.
class Wire {
  public:
    /// The low `count` bits of a number, the highest first.
    void send(std::uint32_t number, int count) {
        while (count-- > 0) send_bit((number >> count & 1) != 0);
    }

    std::uint32_t check_sum() const { return check_sum_; }
    unsigned bits() const { return bits_; }

  private:
    void send_bit(bool bit) {
        constexpr std::uint32_t polynomial = 0x4599;
        const bool folds = bit != ((check_sum_ >> 14 & 1) != 0);
        check_sum_ = (check_sum_ << 1 & 0x7FFF) ^ (folds ? polynomial : 0);
        ++bits_;
        run_ = bit == last_ ? run_ + 1 : 1;
        last_ = bit;
        if (run_ < 5) return;
        // Behind five equal bits one of the other kind goes in, with which a new run begins.
        ++bits_;
        run_ = 1;
        last_ = !bit;
    }

    std::uint32_t check_sum_ = 0;
    unsigned bits_ = 0;
    int run_ = 0;
    bool last_ = true;  // the bus is idle
};

}  // namespace

unsigned wire_bits(std::uint32_t identifier, FrameBytes bytes) {
    // Delimiters, acknowledgement, end of frame and gap: nothing is stuffed there.
    constexpr unsigned behind_check_sum = 1 + 1 + 1 + 7 + 3;
    Wire wire;
    wire.send(0, 1);  // start of frame
    wire.send(identifier >> 18, 11);
    wire.send(3, 2);  // an extended frame
    wire.send(identifier, 18);
    wire.send(0, 3);  // of data; two reserved bits
    wire.send(static_cast<std::uint32_t>(bytes.size()), 4);
    for (const std::uint8_t byte : bytes) wire.send(byte, 8);
    wire.send(wire.check_sum(), 15);
    return wire.bits() + behind_check_sum;
}

WireCount wire_count(const Record& record, pgn_vistel::core::Definitions definitions) {
    WireCount count;
    const auto add = [&count](std::uint32_t identifier, FrameBytes bytes) {
        ++count.frames;
        count.bits += wire_bits(identifier, bytes);
    };
    if (record.kind == Record::Kind::frame)
        cut_single(record.msg, add);
    else
        cut(record.msg, 0, definitions, add);
    return count;
}

}  // namespace vistel
