// Fills and reads the fixed fields of a record. What too long and too many mean is decided here, for all families.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include <json/json.h>

namespace kelvarissdk {

// Fills a text field over its full width with a text up to its first zero byte; a text as long as the field
// leaves no terminator.
template <std::size_t N> void setText(char (&field)[N], std::string_view text) {
    std::size_t const length = std::min(text.substr(0, text.find('\0')).size(), N);
    std::memcpy(field, text.data(), length);
    std::memset(field + length, 0, N - length);
}

// Returns the text from the first byte of a field of the record to its first zero byte. A full field runs on into its
// neighbours, but never past the record's end.
template <class Record> std::string textIn(Record const& record, char const* field) {
    char const* const end = reinterpret_cast<char const*>(&record + 1);
    return {field, std::find(field, end, '\0')};
}

// Returns the text of a slot, which ends with the slot at the latest.
template <std::size_t N> std::string textIn(char const (&slot)[N]) {
    return {slot, std::find(slot, slot + N, '\0')};
}

// Shows a value of a report as text and copies it only where it is a number or a bool; null is the empty text. A list
// or an object throws. The value must live as long.
class Text {
public:
    explicit Text(Json::Value const& value) {
        char const* begin = nullptr;
        char const* end = nullptr;
        if (value.getString(&begin, &end)) {
            text = std::string_view(begin, end);
        } else {
            text = converted = value.asString();
        }
    }
    Text(Text const&) = delete;
    Text& operator=(Text const&) = delete;

    std::string_view view() const {
        return text;
    }

private:
    std::string converted;
    std::string_view text;
};

// Does what setText() does, with a value of a report.
template <std::size_t N> void copyText(char (&field)[N], Json::Value const& value) {
    setText(field, Text(value).view());
}

// Fills slots with the elements of a list, or the members of an object, in order, each by
// `fill(slot, element)`. What is beyond the capacity is dropped; `count` becomes the number stored.
template <class Count, class Slot, std::size_t N, class Fill>
void fillSlots(Count& count, Slot (&slots)[N], Json::Value const& list, Fill fill) {
    std::size_t used = 0;
    for (Json::Value const& element : list) {
        if (used == N) {
            break;
        }
        fill(slots[used], element);
        ++used;
    }
    count = static_cast<Count>(used);
}

// Does what fillSlots() does, with texts.
template <class Count, std::size_t M, std::size_t N>
void fillTexts(Count& count, char (&slots)[M][N], Json::Value const& list) {
    fillSlots(count, slots, list, copyText<N>);
}

} // namespace kelvarissdk
