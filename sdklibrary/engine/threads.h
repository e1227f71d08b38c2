// The library's threads, and the processes that its host forks off.

#pragma once

#include <functional>
#include <thread>

namespace kelvarissdk {

// Starts a thread that leaves all signals to its host, but those of its own faults. Failure throws std::system_error with
// the text "thread constructor failed", memory that runs out std::bad_alloc.
std::thread startThread(std::function<void()> body);

// Differs between a process and those that are forked off from it. Where memory had run out before forks
// could be counted, it throws std::bad_alloc.
unsigned forkGeneration();

} // namespace kelvarissdk
