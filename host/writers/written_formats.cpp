#include "writers/written_formats.h"

#include "writer_headers.inc"

namespace vistel {
namespace {

template <class Writer>
std::unique_ptr<RecordWriter> make() {
    return std::make_unique<Writer>();
}

constexpr struct {
    std::string_view format;
    std::unique_ptr<RecordWriter> (*make)();
} writers[] = {
#include "writer_rows.inc"
};

}  // namespace

std::vector<std::string> written_formats() {
    std::vector<std::string> names;
    for (const auto& writer : writers) names.emplace_back(writer.format);
    return names;
}

std::unique_ptr<RecordWriter> make_writer(std::string_view format) {
    for (const auto& writer : writers)
        if (writer.format == format) return writer.make();
    return nullptr;
}

}  // namespace vistel
