#include "monitor/latest.h"

#include "pgn_vistel/core/catalogue.h"

namespace vistel {

bool LatestMessages::put(const N2KMsg& msg) {
    Key key{msg.pgn, msg.source, {255, 255, 255, 255}};
    pgn_vistel::core::extract_stream_keys(msg.pgn, msg.data, &key.keys[0], &key.keys[1], &key.keys[2],
                                          &key.keys[3]);
    auto found = streams_.find(key);
    if (found == streams_.end()) {
        if (streams_.size() >= most_streams) {
            dropped_ += pending_.size();
            streams_.clear();
            pending_.clear();
        }
        found = streams_.try_emplace(key).first;
    }
    Entry& entry = found->second;
    const bool replaces = entry.frame == frame_;
    entry.msg = msg;
    if (!replaces) {
        entry.frame = frame_;
        pending_.push_back(&entry.msg);
    }
    return replaces;
}

void LatestMessages::clear() {
    *this = LatestMessages();
}

}  // namespace vistel
