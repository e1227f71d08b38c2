#include "registry.h"

#include <stdexcept>

namespace kelvarissim {

void Registry::on(const std::string& requestName, Handler handler) {
    if (!handlers.emplace(requestName, std::move(handler)).second) {
        throw std::logic_error("request " + requestName + " has two handlers");
    }
}

std::string Registry::foreignLock(const std::string& requestName) const {
    const auto lock = foreignLocks.find(requestName);
    return lock == foreignLocks.end() ? "" : lock->second;
}

const Handler* Registry::find(const std::string& requestName) const {
    const auto handler = handlers.find(requestName);
    return handler == handlers.end() ? nullptr : &handler->second;
}

} // namespace kelvarissim
