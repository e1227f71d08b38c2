#include "exposition.h"
#include "text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace monitor {

namespace {

// The units in which a name may end, the longest first.
constexpr std::array<std::string_view, 4> units = {"bytes_per_second", "bytes", "seconds", "ratio"};

std::string_view trimmed(std::string_view text) {
    constexpr char blanks[] = " \t";
    auto const begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// Takes what stands in front of the separator away from the text.
std::string_view takeUntil(std::string_view& text, char separator) {
    auto const end = std::min(text.find(separator), text.size());
    std::string_view const part = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

bool isSameWord(std::string_view one, std::string_view other) {
    auto const lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [lower](char a, char b) { return lower(a) == lower(b); });
}

// The weight of a media range in its parameters; 1 where none is given that can be read.
double weightIn(std::string_view parameters) {
    double weight = 1;
    while (!parameters.empty()) {
        std::string_view value = takeUntil(parameters, ';');
        if (isSameWord(takeUntil(value, '='), "q")) {
            weight = decimal(value).value_or(weight);
        }
    }
    return weight;
}

std::string_view withoutEnd(std::string_view text, std::string_view end) {
    return text.ends_with(end) ? text.substr(0, text.size() - end.size()) : text;
}

} // namespace

char const* contentType(Format format) {
    return format == Format::openMetrics ? "application/openmetrics-text; version=1.0.0; charset=utf-8"
                                         : "text/plain; version=0.0.4; charset=utf-8";
}

// Plain text is what everybody reads, so that the other format has to be named, and not only by a wildcard.
Format formatFor(std::string_view accept) {
    double openMetrics = 0;
    double plainText = 0;
    while (!accept.empty()) {
        std::string_view range = takeUntil(accept, ',');
        std::string_view const type = takeUntil(range, ';');
        double const weight = weightIn(range);
        if (isSameWord(type, "application/openmetrics-text")) {
            openMetrics = std::max(openMetrics, weight);
        } else if (isSameWord(type, "text/plain")) {
            plainText = std::max(plainText, weight);
        }
    }
    return openMetrics > 0 && openMetrics >= plainText ? Format::openMetrics : Format::text;
}

void Labels::add(std::string_view name, std::string_view value) {
    written += written.empty() ? "" : ",";
    written += name;
    written += "=\"";
    for (char const each : printable(value)) { // which leaves no line end
        written += each == '\\' || each == '"' ? "\\" : "";
        written += each;
    }
    written += '"';
}

void Exposition::metric(MetricType ofType, std::string_view ofName, std::string_view ofHelp) {
    type = ofType;
    name = ofName;
    help = ofHelp;
    hasHead = false;
    seen.clear();
}

// OpenMetrics names a metric without the ending that its type gives to the series.
void Exposition::writeHead() {
    if (format == Format::text) {
        text += "# HELP " + name + " " + help + "\n";
        text += "# TYPE " + name + (type == MetricType::counter ? " counter\n" : " gauge\n");
        return;
    }
    bool const isInfo = type == MetricType::info;
    bool const isCounter = type == MetricType::counter;
    std::string const family(withoutEnd(name, isInfo ? "_info" : isCounter ? "_total" : ""));
    text += "# TYPE " + family + (isInfo ? " info\n" : isCounter ? " counter\n" : " gauge\n");
    for (std::string_view const unit : units) {
        if (family.ends_with("_" + std::string(unit))) {
            text += "# UNIT " + family + " " + std::string(unit) + "\n";
            break;
        }
    }
    text += "# HELP " + family + " " + help + "\n";
}

void Exposition::add(Labels const& labels, double value) {
    if (!std::isfinite(value) || !seen.insert(labels.text()).second) {
        return;
    }
    if (!hasHead) {
        hasHead = true;
        writeHead();
    }
    text += name;
    text += labels.text().empty() ? "" : "{" + labels.text() + "}";
    text += " " + plain(value) + "\n";
}

std::string Exposition::take() {
    if (format == Format::openMetrics) {
        text += "# EOF\n";
    }
    return std::move(text);
}

} // namespace monitor
