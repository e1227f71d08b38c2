#include "registry.h"

#include <stdexcept>

namespace kelvarissim {

void Registry::on(std::string const& requestName, Handler handler) {
    if (!handlers.emplace(requestName, std::move(handler)).second) {
        throw std::logic_error("request " + requestName + " has two handlers");
    }
}

std::string Registry::additionalLock(std::string const& requestName) const {
    auto const lock = additionalLocks.find(requestName);
    return lock == additionalLocks.end() ? "" : lock->second;
}

Handler const* Registry::find(std::string const& requestName) const {
    auto const handler = handlers.find(requestName);
    return handler == handlers.end() ? nullptr : &handler->second;
}

} // namespace kelvarissim
