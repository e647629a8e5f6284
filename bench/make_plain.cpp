// make_plain RECORDING TIMES > messages.log

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "output/sink.h"
#include "output/times.h"
#include "sample.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_plain RECORDING TIMES\n");
        return 2;
    }
    const auto sample = load_sample(argv[1]);
    const auto out = std::make_unique<vistel::Sink>(STDOUT_FILENO);
    for (int round = std::atoi(argv[2]); round > 0; --round) {
        for (const SampleMessage& entry : sample) {
            const N2KMsg& msg = entry.msg;
            vistel::put_utc(*out, entry.time.nanoseconds);
            for (const std::uint64_t number :
                 {std::uint64_t{msg.priority}, std::uint64_t{msg.pgn}, std::uint64_t{msg.source},
                  std::uint64_t{msg.destination}, std::uint64_t{msg.length}}) {
                out->put(',');
                out->put_number(number);
            }
            for (int i = 0; i < msg.length; ++i) {
                out->put(',');
                out->put_hex(msg.data + i, 1);
            }
            out->put('\n');
        }
    }
    out->flush();
}
