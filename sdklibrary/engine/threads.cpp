#include "threads.h"

#include <system_error>
#include <utility>

namespace kelvarissdk {

std::thread startThread(std::function<void()> body) {
    try {
        return std::thread(std::move(body));
    } catch (std::system_error const& failure) {
        throw std::system_error(failure.code(), "thread constructor failed");
    }
}

} // namespace kelvarissdk
