#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "terminal/page.h"
#include "text/result.h"

namespace vistel {

/// The terminal while it is taken over. It is given back, as it was, with the object.
class Screen {
  public:
    /// Takes over the terminal that the program was started in; its standard input may be something else.
    static Result<std::unique_ptr<Screen>> take_over();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    int width() const;
    int height() const;

    void show(const Page& page);

    /// Waits for a key; nothing where none came in time, or the size changed.
    [[nodiscard]] std::optional<std::uint32_t> wait_for_key(int milliseconds);

    /// Whether the terminal is gone.
    bool is_lost() const;

  private:
    Screen() = default;
    void put(const std::string& text);

    std::FILE* terminal_ = nullptr;
    void* screen_ = nullptr;
    bool has_colours_ = false;
};

}  // namespace vistel
