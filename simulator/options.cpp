#include "options.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace kelvarissim {

void OptionTable::flag(std::string const& name, std::string const& help, bool& target) {
    text(name, "", help, [&target](std::string const&) { return target = true; });
}

void OptionTable::text(std::string name, std::string valueName, std::string help,
                       std::function<bool(std::string const&)> apply) {
    if (find(name) != nullptr) {
        throw std::logic_error("option " + name + " stands twice");
    }
    rows.push_back({std::move(name), std::move(valueName), std::move(help), std::move(apply)});
}

OptionTable::Outcome OptionTable::parse(std::vector<std::string> const& words, std::ostream& out,
                                        std::ostream& err) const {
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (*word == "--help") {
            showHelp(out);
            return Outcome::helpShown;
        }
        Row const* row = find(*word);
        if (row == nullptr) {
            err << "kelvarissim: unknown option \"" << *word << "\", see --help\n";
            return Outcome::refused;
        }
        std::string value;
        if (!row->valueName.empty()) {
            if (++word == words.end()) {
                err << "kelvarissim: " << row->name << " needs a value, " << row->valueName << '\n';
                return Outcome::refused;
            }
            value = *word;
        }
        if (!row->apply(value)) {
            err << "kelvarissim: " << row->name << " can't be \"" << value << "\", see --help\n";
            return Outcome::refused;
        }
    }
    return Outcome::run;
}

OptionTable::Row const* OptionTable::find(std::string const& name) const {
    auto const row =
        std::find_if(rows.begin(), rows.end(), [&](Row const& each) { return each.name == name; });
    return row == rows.end() ? nullptr : &*row;
}

void OptionTable::showHelp(std::ostream& out) const {
    constexpr int nameWidth = 28;
    out << "Usage: kelvarissim [option ...]\n"
           "A simulated daemon on 127.0.0.1 that keeps its world in memory. It ends on the request \"exit\", "
           "on\n"
           "SIGINT and on SIGTERM; its links then end without a WebSocket close frame.\n\n";
    for (Row const& row : rows) {
        std::string const form = row.valueName.empty() ? row.name : row.name + ' ' + row.valueName;
        out << "  " << std::left << std::setw(nameWidth) << form << row.help << '\n';
    }
    out << "  " << std::setw(nameWidth) << "--help"
        << "prints this text\n"
        << std::flush;
}

} // namespace kelvarissim
