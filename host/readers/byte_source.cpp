#include "readers/byte_source.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace vistel {
namespace {

std::string text_of(int error) {
    return std::generic_category().message(error);
}

}  // namespace

ByteSource::~ByteSource() {
    if (descriptor_ > STDIN_FILENO) ::close(descriptor_);
}

Status ByteSource::open(const std::string& path) {
    if (path == "-") return attach(STDIN_FILENO);
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Failure{text_of(errno)};
    return attach(descriptor);
}

Status ByteSource::attach(int descriptor) {
    assert(descriptor_ < 0);
    descriptor_ = descriptor;
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) return Failure{text_of(errno)};
    if (S_ISDIR(status.st_mode)) return Failure{text_of(EISDIR)};
    is_file_ = S_ISREG(status.st_mode);
    if (is_file_) {
        const off_t start = ::lseek(descriptor_, 0, SEEK_CUR);
        total_ = static_cast<std::uint64_t>(std::max<off_t>(0, status.st_size - std::max<off_t>(0, start)));
    }
    buffer_ = std::make_unique_for_overwrite<char[]>(capacity);
    return done;
}

ByteSource::Fill ByteSource::fill(Wait wait) {
    // Small enough to stay in the processor's cache until it is parsed.
    constexpr std::size_t chunk = std::size_t{1} << 18;
    if (ended_) return error_.empty() ? Fill::end : Fill::failed;
    assert(end_ - begin_ < capacity);
    if (begin_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (!is_file_) {
        pollfd request{descriptor_, POLLIN, 0};
        int ready = ::poll(&request, 1, 0);
        if (ready == 0 && wait == Wait::yes && patience_ != 0) {
            if (before_wait_) before_wait_();
            ready = ::poll(&request, 1, patience_);
        }
        if (ready == 0 || (ready < 0 && errno == EINTR)) return Fill::idle;
    }
    const ssize_t size = ::read(descriptor_, buffer_.get() + end_, std::min(chunk, capacity - end_));
    if (size > 0) {
        end_ += static_cast<std::size_t>(size);
        received_ += static_cast<std::uint64_t>(size);
        return Fill::data;
    }
    if (size == 0) {
        ended_ = true;
        return Fill::end;
    }
    if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK) return Fill::idle;
    error_ = text_of(errno);
    ended_ = true;
    return Fill::failed;
}

}  // namespace vistel
