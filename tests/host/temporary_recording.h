#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <utility>

#include "text/path_of.h"

namespace vistel::test {

/// A recording in a file of its own, whose name goes beyond ASCII.
class TemporaryRecording {
  public:
    explicit TemporaryRecording(const std::string& text) {
        const int descriptor = ::mkstemp(name_.data());
        EXPECT_EQ(::write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        ::close(descriptor);
        const std::string narrow = std::exchange(name_, name_ + "_fähre");
        std::filesystem::rename(narrow, path_of(name_));
    }
    ~TemporaryRecording() { std::filesystem::remove(path_of(name_)); }
    const std::string& name() const { return name_; }

  private:
    std::string name_ = testing::TempDir() + "recording_XXXXXX";
};

/// Messages of that many streams: batteries of 252 sources.
inline std::string batteries(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        char line[64];
        std::snprintf(line, sizeof line, "00:00:00.00,6,127508,%d,255,1,%02x\n", i % 252, i / 252);
        text += line;
    }
    return text;
}

}  // namespace vistel::test
