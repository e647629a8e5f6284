// make_plain RECORDING TIMES > messages.log

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "sample.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_plain RECORDING TIMES\n");
        return 2;
    }
    const auto sample = load_sample(argv[1]);
    for (int round = std::atoi(argv[2]); round > 0; --round) {
        for (const SampleMessage& entry : sample) {
            constexpr std::int64_t second = 1'000'000'000;
            const std::time_t seconds = entry.time.nanoseconds / second;
            char date[32];
            std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", std::gmtime(&seconds));
            const N2KMsg& msg = entry.msg;
            std::printf("%s.%06dZ,%d,%u,%d,%d,%d", date,
                        static_cast<int>(entry.time.nanoseconds % second / 1000), msg.priority, msg.pgn,
                        msg.source, msg.destination, msg.length);
            for (int i = 0; i < msg.length; ++i) std::printf(",%02X", msg.data[i]);
            std::putchar('\n');
        }
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
