#pragma once

#include <string>
#include <vector>

#include "can/record.h"
#include "pgn_vistel/n2k_msg.h"

/// The messages of a recording, reassembled.
struct SampleMessage {
    N2KMsg msg;
    vistel::RecordTime time;
};
std::vector<SampleMessage> load_sample(const std::string& path);
