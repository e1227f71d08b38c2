#include <iostream>
#include <kelvarissdk/kelvarissdk.hpp>

int main() {
    kelvaris::Client client;
    auto const link =
        client.onLink([](kelvaris::Link to) { std::cout << (to == kelvaris::Link::UP) << std::endl; });
    auto const states =
        client.getState().subscribe([](kelvaris::Result<kelvaris::StateResult> const& result) {
            std::cout << (result ? toString(result->state) : result.error().message) << std::endl;
        });
    std::cin.get();
}
