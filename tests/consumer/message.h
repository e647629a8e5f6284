// The message that the hosts show: a speed through water of 2.00 m/s.
#pragma once

#include "pgn_vistel/n2k_msg.h"

inline N2KMsg speed_message() {
    N2KMsg msg{};
    msg.pgn = 128259;
    msg.destination = 255;
    msg.length = 8;
    const unsigned char payload[] = {0x01, 0xC8, 0x00, 0xFF, 0xFF, 0x00, 0xFF, 0xFF};
    for (int i = 0; i < 8; ++i) msg.data[i] = payload[i];
    return msg;
}
