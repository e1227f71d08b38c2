#pragma once

#include <charconv>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace kelvarissim {

template <typename T> std::optional<T> readNumber(std::string_view text, T min, T max) {
    T value{};
    char const* end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < min || value > max) {
        return std::nullopt;
    }
    return value;
}

// Holds the command line as a table: each option is a row, which is also the option's line in --help. An
// option's target must live until parse() has returned; a family keeps it in the structure that its handlers
// share.
class OptionTable {
public:
    enum class Outcome { run, helpShown, refused };

    // Adds an option without a value; it sets the target to true.
    void flag(std::string const& name, std::string const& help, bool& target);

    // Adds an option that takes a decimal number from min to max. The target is a T or an optional of it.
    template <typename T, typename Target>
    void number(std::string const& name, std::string const& valueName, std::string const& help, T min, T max,
                Target& target) {
        text(name, valueName, help, [min, max, &target](std::string const& word) {
            std::optional<T> const value = readNumber<T>(word, min, max);
            if (value) {
                target = *value;
            }
            return value.has_value();
        });
    }

    // Adds an option with any other value. apply() checks and stores the value and returns false to refuse
    // it. It runs each time the option is given.
    void text(std::string name, std::string valueName, std::string help,
              std::function<bool(std::string const&)> apply);

    Outcome parse(std::vector<std::string> const& words, std::ostream& out, std::ostream& err) const;

private:
    struct Row {
        std::string name;
        std::string valueName; // empty: the option takes no value
        std::string help;
        std::function<bool(std::string const&)> apply;
    };

    Row const* find(std::string const& name) const;
    void showHelp(std::ostream& out) const;

    std::vector<Row> rows;
};

} // namespace kelvarissim
