// Compiled as C++17 and once more without exceptions, under another name each, and linked to a test in C++20: the classes
// are the same. The macro is one that programs are often compiled with.
#define DEBUG 1

#include <kelvarissdk/kelvarissdk.hpp>

// True when the client that another unit has made serves this one.
bool UNIT(kelvaris::Client& client) {
    std::promise<int> told;
    kelvaris::Subscription const states = client.getState().subscribe(
        [&told, left = 1](kelvaris::Result<kelvaris::StateResult> const& state) mutable {
            if (left-- == 1) {
                told.set_value(state ? static_cast<int>(state.value().state) : -1);
            }
        });
    return client.getVersion().get().value().maj == 7 && told.get_future().get() == 6;
}
