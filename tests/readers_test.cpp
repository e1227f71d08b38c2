// Reading words, and the product's name in messages.

#include "arguments.h"
#include "arguments/readers.h"
#include "productStringReplacement.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>

TEST(Readers, Numbers) {
    struct Case {
        char const* word;
        std::optional<long long> number;
        std::optional<uint32_t> count;
        std::optional<int> integer; // at least -1
        std::optional<unsigned long long> unsigned64;
    };
    auto const none = std::nullopt;
    Case const cases[] = {
        {"0", 0, 0, 0, 0},
        {"-1", -1, none, -1, ULLONG_MAX},
        {"-2", -2, none, none, ULLONG_MAX - 1},
        {"2147483647", 2147483647, 2147483647, 2147483647, 2147483647},
        {"2147483648", 2147483648, 2147483648, none, 2147483648},
        {"4294967295", 4294967295, 4294967295, none, 4294967295},
        {"4294967296", 4294967296, none, none, 4294967296},
        {"18446744073709551615", LLONG_MAX, none, none, ULLONG_MAX},
        {"18446744073709551616", LLONG_MAX, none, none, none},
        {"", none, none, none, none},
        {"5k", none, none, none, none},
        {"0x10", none, none, none, none},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.word);
        EXPECT_EQ(readNumber(c.word), c.number);
        EXPECT_EQ(readCount(c.word), c.count);
        EXPECT_EQ(readInt(c.word, -1), c.integer);
        EXPECT_EQ(readUnsigned(c.word), c.unsigned64);
    }
    EXPECT_EQ(readOnOff("on"), true);
    EXPECT_EQ(readOnOff("off"), false);
    for (char const* word : {"On", "", "1", "off "}) {
        EXPECT_EQ(readOnOff(word), none);
    }
}

TEST(Readers, PortPairs) {
    auto const read = [](char const* word) {
        auto const pair = readPortPair(word);
        bool const isUdp = pair && pair->protocol == KelvarisSDK_PortProtocol_UDP;
        return pair ? (isUdp ? "udp " : "tcp ") + std::to_string(pair->port) : "none";
    };
    for (char const* word : {"0", "65536", "-1", "80x", "/tcp", "80/sctp", "80/", "80/TCP", ""}) {
        EXPECT_EQ(read(word), "none") << word;
    }
    EXPECT_EQ(read("1"), "tcp 1");
    EXPECT_EQ(read("65535/udp"), "udp 65535");
    EXPECT_EQ(read("80/tcpx"), "tcp 80");
    EXPECT_EQ(read("53/udp/tcp"), "udp 53");
}

TEST(Readers, PrivateServers) {
    EXPECT_TRUE(isPrivate("privateus"));
    for (char const* word : {"privateu", "privateuss", "privateu1", "private1x", "Privateus", "us", ""}) {
        EXPECT_FALSE(isPrivate(word)) << word;
    }
}

TEST(Product, PlaceholderIsReplaced) {
    char const* const plain = "kelvarisProductName {kelvarisProductname}";
    EXPECT_EQ(replaceProductString(plain), plain);
    EXPECT_STREQ(replaceProductString("{kelvarisProductName} & {kelvarisProductName}{"),
                 "Kelvaris & Kelvaris{");
    std::string const full = replaceProductString(("{kelvarisProductName}" + std::string(300, 'x')).c_str());
    EXPECT_EQ(full, "Kelvaris" + std::string(192, 'x'));
    EXPECT_STREQ(replaceProductString("{kelvarisProductName}"), "Kelvaris");
}
