// kelvarissdk-abi.json, the layout of the interface that the build writes for bindings.

#include "support/texts.h"

#include <gtest/gtest.h>
#include <json/json.h>
#include <kelvarissdk/csdkinterface.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>

using namespace harness;

namespace {

Json::Value description() {
    Json::Value document;
    std::istringstream(contents(ABI_DESCRIPTION)) >> document;
    return document;
}

// Returns a record as the golden file has it, without the empty line.
std::string rowsOf(std::string const& name, Json::Value const& record) {
    std::string rows = name + ' ' + record["size"].asString() + '\n';
    for (Json::Value const& field : record["fields"]) {
        rows += "    " + field["name"].asString() + ' ' + field["offset"].asString() + ' ' +
                field["size"].asString() + '\n';
    }
    return rows;
}

} // namespace

// The golden file is what the compiler's assertions compare with.
TEST(Abi, RecordsAreTheGoldenOnes) {
#ifdef __i386__
    GTEST_SKIP() << "numbers of 64 bits stand at multiples of 4 here";
#endif
    std::set<std::string> expected;
    std::string const text = std::regex_replace(golden("records.txt") + '\n', std::regex("(\\d+)\\|(\\d+)"),
                                                sizeof(long) == 8 ? "$1" : "$2");
    for (size_t start = 0, end; (end = text.find("\n\n", start)) != std::string::npos; start = end + 2) {
        expected.insert(text.substr(start, end + 1 - start));
    }
    std::set<std::string> described;
    Json::Value const records = description()["records"];
    std::string const prefix = "KelvarisSDK_";
    for (std::string const& name : records.getMemberNames()) {
        if (name.starts_with(prefix)) {
            described.insert(rowsOf(name.substr(prefix.size()), records[name]));
        }
    }
    EXPECT_EQ(described, expected);
    EXPECT_EQ(records["tm"]["size"].asUInt(), sizeof(std::tm));
}

// A binding makes its own records from the types; they have to fill what the sizes say.
TEST(Abi, TypesFillTheFields) {
    std::map<std::string, size_t> sizes = {{"bool", sizeof(bool)}, {"char", 1},
                                           {"float", 4},           {"double", 8},
                                           {"int32_t", 4},         {"int64_t", 8},
                                           {"uint16_t", 2},        {"uint32_t", 4},
                                           {"uint64_t", 8},        {"pointer", sizeof(void*)}};
    Json::Value const document = description();
    for (char const* const named : {"records", "enumerations"}) {
        for (std::string const& name : document[named].getMemberNames()) {
            sizes[name] = document[named][name]["size"].asUInt();
        }
    }
    for (std::string const& name : document["records"].getMemberNames()) {
        for (Json::Value const& field : document["records"][name]["fields"]) {
            size_t size = sizes[field["type"].asString()];
            for (Json::Value const& elements : field["dimensions"]) {
                size *= elements.asUInt();
            }
            EXPECT_EQ(size, field["size"].asUInt()) << name << ' ' << field;
        }
    }
    EXPECT_EQ(document["pointerSize"].asUInt(), sizeof(void*));
    EXPECT_EQ(document["longSize"].asUInt(), sizeof(long));
    uint16_t const one = 1;
    EXPECT_EQ(document["byteOrder"].asString(), reinterpret_cast<char const&>(one) ? "little" : "big");
    EXPECT_EQ(document["version"].asString(), KELVARISSDK_VERSION_STRING);
}

TEST(Abi, EnumerationsAreTheHeaders) {
    std::map<std::string, std::string> declared;
    for (char const* const family :
         {"adapters", "lists", "safebrowsing", "session", "settings", "telemetry", "types"}) {
        std::string const text = source(std::string("sdklibrary/include/kelvarissdk/") + family + ".h");
        std::regex const line(R"(\n    (KelvarisSDK_\w+) = (\d+)\b)");
        for (std::sregex_iterator match(text.begin(), text.end(), line); match != std::sregex_iterator();
             ++match) {
            declared[(*match)[1]] = (*match)[2];
        }
    }
    std::map<std::string, std::string> described;
    Json::Value const enumerations = description()["enumerations"];
    for (Json::Value const& enumeration : enumerations) {
        for (std::string const& name : enumeration["values"].getMemberNames()) {
            described[name] = enumeration["values"][name].asString();
        }
    }
    EXPECT_EQ(described, declared);
    EXPECT_EQ(described["KelvarisSDK_ErrorType_LOCKED_BY_ACCOUNT"], "3848");
}
