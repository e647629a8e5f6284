#include "readers/actisense_format.h"

#include <algorithm>

#include "readers/ebl_format.h"

namespace vistel {
namespace {

/// Framed and with every byte doubled.
constexpr std::size_t most_framed = 2 * BstReader::most_bytes + 4;

/// Position of the next start mark, or of a first half of one at the end where more may follow, or else the
/// end.
std::size_t find_start(std::string_view bytes, std::size_t from, bool last) {
    const std::size_t start = bytes.find(BstFrame::start_mark, from);
    if (start != std::string_view::npos) return start;
    const bool half = !last && bytes.size() > from && bytes.back() == BstFrame::escape;
    return bytes.size() - half;
}

}  // namespace

bool ActisenseFormat::begins(std::string_view head) {
    if (EblFormat::begins(head)) return false;  // which has such frames too
    head = head.substr(0, 2 * most_framed);
    BstFrame frame;
    for (std::size_t start = 0; (start = find_start(head, start, true)) < std::min(head.size(), most_framed);
         start += BstFrame::start_mark.size()) {
        PlainStream stream(head.substr(start));
        if (take_frame(stream, frame) == BstFrame::End::whole && frame.size > 0 &&
            BstReader::is_known(frame.record()))
            return true;
    }
    return false;
}

/// Bytes outside of frames. A recording may begin with the rest of one.
Found ActisenseFormat::pass_others(std::string_view bytes, bool last, std::size_t& size,
                                   Problem& problem) const {
    size = find_start(bytes, 0, last);
    if (size == 0) return Found::more;
    const bool rest_of_one = !begun_ && size < most_framed && size < bytes.size();
    if (rest_of_one) return Found::nothing;
    describe(problem, size, " bytes belong to no record");
    return Found::problem;
}

Found ActisenseFormat::take(std::string_view bytes, bool last, std::size_t& size, Record& record,
                            Problem& problem) {
    if (!bytes.starts_with(BstFrame::start_mark)) [[unlikely]]
        return pass_others(bytes, last, size, problem);
    begun_ = true;
    PlainStream stream(bytes);
    switch (take_frame(stream, frame_)) {
        case BstFrame::End::whole: break;
        case BstFrame::End::open: return Found::more;
        case BstFrame::End::cut:
            size = find_start(bytes, stream.taken() - BstFrame::start_mark.size(), last);
            describe(problem, "a record is cut off");
            return Found::problem;
    }
    size = stream.taken();
    return records_.read(frame_.record(), BstReader::Checksum::present, record, problem);
}

}  // namespace vistel
