#include "sample.h"

#include <cstdio>
#include <cstdlib>

#include "readers/recording.h"
#include "reassembly/reassembler.h"

std::vector<SampleMessage> load_sample(const std::string& path) {
    std::vector<SampleMessage> sample;
    vistel::Reassembler reassembler([&sample](const N2KMsg& msg, const vistel::RecordTime& time) {
        sample.push_back({msg, time});
    });
    vistel::Recording recording;
    if (const auto opened = recording.open(path); !opened) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), opened.error().text.c_str());
        std::exit(2);
    }
    vistel::Record record;
    for (auto result = recording.next(record); result != vistel::ReadResult::end;
         result = recording.next(record))
        if (result == vistel::ReadResult::record) reassembler.put(record);
    return sample;
}
