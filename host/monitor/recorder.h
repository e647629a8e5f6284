#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "text/result.h"
#include "writers/converter.h"

namespace vistel {

/// Writes what comes to a file, in any format that is written.
class Recorder {
  public:
    /// Fails where the file cannot be written, or is one of the `inputs`.
    static Result<std::unique_ptr<Recorder>> open(const std::string& path, const std::string& format,
                                                  const std::vector<std::string>& inputs,
                                                  pgn_vistel::core::Definitions definitions);
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void put(const Record& record);
    /// Brings to the file what is still on the way, as far as it can be written.
    void flush();

    std::uint64_t written() const { return converter_.written(); }  ///< messages or frames
    std::uint64_t refused() const { return refused_; }              ///< that the format cannot hold
    /// Why the file is not whole; empty as long as it is.
    const std::string& failure() const { return failure_; }

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    Recorder(std::FILE* file, const std::string& format, pgn_vistel::core::Definitions definitions);
    void note_failure(bool failed);

    std::unique_ptr<std::FILE, Close> file_;
    std::unique_ptr<RecordWriter> writer_;
    std::string bytes_;
    std::uint64_t refused_ = 0;
    std::string failure_;
    Converter converter_;
};

}  // namespace vistel
