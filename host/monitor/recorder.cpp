#include "monitor/recorder.h"

#include <cerrno>

#include "output/output_file.h"
#include "output/write.h"
#include "text/error_text.h"
#include "writers/written_formats.h"

namespace vistel {

Result<std::unique_ptr<Recorder>> Recorder::open(const std::string& path, const std::string& format,
                                                 const std::vector<std::string>& inputs,
                                                 pgn_vistel::core::Definitions definitions) {
    auto descriptor = open_output(path, inputs);
    if (!descriptor) return descriptor.error();
    std::FILE* const file = ::fdopen(*descriptor, "wb");
    if (file == nullptr) {
        Failure why{error_text(errno)};
        close_written(*descriptor);
        return why;
    }
    return std::unique_ptr<Recorder>(new Recorder(file, format, definitions));
}

Recorder::Recorder(std::FILE* file, const std::string& format, pgn_vistel::core::Definitions definitions)
    : file_(file),
      writer_(make_writer(format)),
      converter_(
          *writer_, bytes_, [this](const N2KMsg&, const char*) { ++refused_; }, definitions) {}

void Recorder::put(const Record& record) {
    converter_.put(record);
    if (failure_.empty())
        note_failure(std::fwrite(bytes_.data(), 1, bytes_.size(), file_.get()) != bytes_.size());
    bytes_.clear();
}

void Recorder::flush() {
    if (failure_.empty()) note_failure(std::fflush(file_.get()) != 0);
}

void Recorder::note_failure(bool failed) {
    if (failed) failure_ = error_text(errno);
}

}  // namespace vistel
