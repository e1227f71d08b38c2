// The library's threads.

#pragma once

#include <functional>
#include <thread>

namespace kelvarissdk {

// Starts a thread; failure throws std::system_error with the text "thread constructor failed".
std::thread startThread(std::function<void()> body);

} // namespace kelvarissdk
