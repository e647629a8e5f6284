#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "readers/byte_input.h"
#include "text/error_text.h"
#include "text/windows_text.h"

namespace vistel {
namespace {

/// Closed in the end unless it is a standard handle.
class Handle {
  public:
    Handle(HANDLE handle, bool is_ours) : handle_(handle), is_ours_(is_ours) {}
    ~Handle() {
        if (is_ours_) CloseHandle(handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE get() const { return handle_; }

  private:
    const HANDLE handle_;
    const bool is_ours_;
};

class FileInput final : public ByteInput {
  public:
    explicit FileInput(std::shared_ptr<Handle> handle) : handle_(std::move(handle)) {
        LARGE_INTEGER size{}, start{};
        GetFileSizeEx(handle_->get(), &size);
        SetFilePointerEx(handle_->get(), {}, &start, FILE_CURRENT);
        if (size.QuadPart > start.QuadPart)
            total_ = static_cast<std::uint64_t>(size.QuadPart - start.QuadPart);
    }

    Fill read(std::span<char> room, int, std::size_t& size) override {
        DWORD count = 0;
        if (!ReadFile(handle_->get(), room.data(), static_cast<DWORD>(room.size()), &count, nullptr)) {
            error_ = windows_error_text(GetLastError());
            return Fill::failed;
        }
        size = count;
        return count > 0 ? Fill::data : Fill::end;
    }
    const std::string& error() const override { return error_; }
    bool is_file() const override { return true; }
    std::uint64_t total() const override { return total_; }

  private:
    std::shared_ptr<Handle> handle_;
    std::uint64_t total_ = 0;
    std::string error_;
};

/// A pipe, a console or a device. Nobody can wait for these for a limited time, so a thread reads them, one
/// piece ahead. It may be held up in a read when nobody listens any more, and outlives this object then.
class StreamInput final : public ByteInput {
  public:
    explicit StreamInput(std::shared_ptr<Handle> handle) {
        std::thread(read_all, std::move(handle), channel_).detach();
    }
    ~StreamInput() override {
        const std::lock_guard lock(channel_->mutex);
        channel_->is_wanted = false;
        channel_->changed.notify_all();
    }
    StreamInput(const StreamInput&) = delete;
    StreamInput& operator=(const StreamInput&) = delete;

    Fill read(std::span<char> room, int patience, std::size_t& size) override;
    const std::string& error() const override { return error_; }
    bool is_file() const override { return false; }
    std::uint64_t total() const override { return 0; }

  private:
    struct Channel {
        std::mutex mutex;
        std::condition_variable changed;
        std::vector<char> bytes;  // those from `begin` on wait to be taken
        std::size_t begin = 0;
        bool is_over = false;
        DWORD error = ERROR_SUCCESS;
        bool is_wanted = true;

        bool is_empty() const { return begin == bytes.size(); }
    };

    static void read_all(const std::shared_ptr<Handle>& handle, const std::shared_ptr<Channel>& channel);

    std::shared_ptr<Channel> channel_ = std::make_shared<Channel>();
    std::string error_;
};

void StreamInput::read_all(const std::shared_ptr<Handle>& handle, const std::shared_ptr<Channel>& channel) {
    constexpr std::size_t piece = std::size_t{1} << 16;
    std::vector<char> bytes;
    for (;;) {
        bytes.resize(piece);
        DWORD count = 0;
        SetLastError(ERROR_SUCCESS);
        const BOOL is_read = ReadFile(handle->get(), bytes.data(), piece, &count, nullptr);
        const DWORD error = GetLastError();
        // An interrupt from the keyboard breaks off the read of a console.
        if (count == 0 && error == ERROR_OPERATION_ABORTED) continue;
        bytes.resize(count);
        std::unique_lock lock(channel->mutex);
        channel->changed.wait(lock, [&] { return channel->is_empty() || !channel->is_wanted; });
        if (!channel->is_wanted) return;
        channel->bytes.swap(bytes);
        channel->begin = 0;
        channel->is_over = count == 0;
        if (!is_read && error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF) channel->error = error;
        channel->changed.notify_all();
        if (channel->is_over) return;
    }
}

ByteInput::Fill StreamInput::read(std::span<char> room, int patience, std::size_t& size) {
    std::unique_lock lock(channel_->mutex);
    const auto is_ready = [this] { return !channel_->is_empty() || channel_->is_over; };
    if (patience < 0)
        channel_->changed.wait(lock, is_ready);
    else if (!channel_->changed.wait_for(lock, std::chrono::milliseconds(patience), is_ready))
        return Fill::idle;
    if (channel_->is_empty()) {
        if (channel_->error == ERROR_SUCCESS) return Fill::end;
        error_ = windows_error_text(channel_->error);
        return Fill::failed;
    }
    size = std::min(room.size(), channel_->bytes.size() - channel_->begin);
    std::copy_n(channel_->bytes.data() + channel_->begin, size, room.data());
    channel_->begin += size;
    channel_->changed.notify_all();
    return Fill::data;
}

std::unique_ptr<ByteInput> input_of(HANDLE handle, bool is_ours) {
    auto owner = std::make_shared<Handle>(handle, is_ours);
    if (GetFileType(handle) == FILE_TYPE_DISK) return std::make_unique<FileInput>(std::move(owner));
    return std::make_unique<StreamInput>(std::move(owner));
}

}  // namespace

Result<std::unique_ptr<ByteInput>> open_file(const std::string& path) {
    if (path == "-") return attach_descriptor(0);
    const std::wstring file = wide(path);
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle != INVALID_HANDLE_VALUE) return input_of(handle, true);
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return failure(error_text(EISDIR));
    return failure(windows_error_text(error));
}

Result<std::unique_ptr<ByteInput>> attach_descriptor(int descriptor) {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    if (handle == INVALID_HANDLE_VALUE || GetFileType(handle) == FILE_TYPE_UNKNOWN)
        return failure(error_text(EBADF));
    return input_of(handle, descriptor > 2);
}

}  // namespace vistel
