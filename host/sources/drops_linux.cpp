#include <linux/sock_diag.h>
#include <sys/socket.h>

#include "sources/drops.h"

namespace vistel {

std::uint64_t dropped_by_system(std::intptr_t socket) {
    std::uint32_t account[SK_MEMINFO_VARS] = {};
    socklen_t size = sizeof account;
    const int descriptor = static_cast<int>(socket);
    if (::getsockopt(descriptor, SOL_SOCKET, SO_MEMINFO, account, &size) != 0) return 0;
    return account[SK_MEMINFO_DROPS];
}

}  // namespace vistel
