// Text is read out of a record by one function, because its fields needn't have a terminator.

#pragma once

#include <algorithm>
#include <string>

// Returns the text of one of the record's fields, from the field's first byte to the first zero byte. A full
// field has no terminator and runs on into what follows it; the record's last byte is the last that is read.
template <class Record> std::string recordText(Record const& record, char const* field) {
    char const* const end = reinterpret_cast<char const*>(&record) + sizeof(Record);
    return {field, std::find(field, end, '\0')};
}
