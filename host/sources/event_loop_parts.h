#pragma once

#include <asio/io_context.hpp>

#include "sources/event_loop.h"

namespace vistel {

struct EventLoop::Parts {
    asio::io_context context{1};
};

}  // namespace vistel
