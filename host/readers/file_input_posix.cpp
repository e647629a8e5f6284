#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "readers/byte_input.h"
#include "text/error_text.h"

namespace vistel {
namespace {

/// A file, pipe or terminal.
class DescriptorInput final : public ByteInput {
  public:
    explicit DescriptorInput(int descriptor) : descriptor_(descriptor) {}
    ~DescriptorInput() override {
        if (descriptor_ > STDIN_FILENO) ::close(descriptor_);
    }
    DescriptorInput(const DescriptorInput&) = delete;
    DescriptorInput& operator=(const DescriptorInput&) = delete;

    Status examine();

    Fill read(std::span<char> room, int patience, std::size_t& size) override;
    const std::string& error() const override { return error_; }
    bool is_file() const override { return is_file_; }
    std::uint64_t total() const override { return total_; }

  private:
    int descriptor_;
    bool is_file_ = false;
    std::uint64_t total_ = 0;
    std::string error_;
};

Status DescriptorInput::examine() {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) return Failure{error_text(errno)};
    if (S_ISDIR(status.st_mode)) return Failure{error_text(EISDIR)};
    is_file_ = S_ISREG(status.st_mode);
    if (is_file_) {
        const off_t start = ::lseek(descriptor_, 0, SEEK_CUR);
        total_ = static_cast<std::uint64_t>(std::max<off_t>(0, status.st_size - std::max<off_t>(0, start)));
    }
    return done;
}

ByteInput::Fill DescriptorInput::read(std::span<char> room, int patience, std::size_t& size) {
    if (!is_file_) {
        pollfd request{descriptor_, POLLIN, 0};
        const int ready = ::poll(&request, 1, patience);
        if (ready == 0 || (ready < 0 && errno == EINTR)) return Fill::idle;
    }
    const ssize_t count = ::read(descriptor_, room.data(), room.size());
    if (count > 0) {
        size = static_cast<std::size_t>(count);
        return Fill::data;
    }
    if (count == 0) return Fill::end;
    if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK) return Fill::idle;
    error_ = error_text(errno);
    return Fill::failed;
}

}  // namespace

Result<std::unique_ptr<ByteInput>> open_file(const std::string& path) {
    if (path == "-") return attach_descriptor(STDIN_FILENO);
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Failure{error_text(errno)};
    return attach_descriptor(descriptor);
}

Result<std::unique_ptr<ByteInput>> attach_descriptor(int descriptor) {
    auto input = std::make_unique<DescriptorInput>(descriptor);
    if (const auto examined = input->examine(); !examined) return examined.error();
    return std::unique_ptr<ByteInput>(std::move(input));
}

}  // namespace vistel
