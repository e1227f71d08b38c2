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
    for (Case const& c : {
             Case{"0", 0, 0, 0, 0},
             Case{"-1", -1, none, -1, ULLONG_MAX},
             Case{"-2", -2, none, none, ULLONG_MAX - 1},
             Case{"2147483647", 2147483647, 2147483647, 2147483647, 2147483647},
             Case{"2147483648", 2147483648, 2147483648, none, 2147483648},
             Case{"4294967295", 4294967295, 4294967295, none, 4294967295},
             Case{"4294967296", 4294967296, none, none, 4294967296},
             Case{"18446744073709551615", LLONG_MAX, none, none, ULLONG_MAX},
             Case{"18446744073709551616", LLONG_MAX, none, none, none},
             Case{"", none, none, none, none},
             Case{"5k", none, none, none, none},
             Case{"1.5", none, none, none, none},
             Case{"0x10", none, none, none, none},
         }) {
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
    for (char const* word : {"0", "65536", "-1", "80x", "/tcp", "80/sctp", "80/", "80/TCP", ""}) {
        EXPECT_FALSE(readPortPair(word)) << word;
    }
    struct Case {
        char const* word;
        KelvarisSDK_PortProtocol protocol;
        uint16_t port;
    };
    for (Case const& c : {Case{"1", KelvarisSDK_PortProtocol_TCP, 1},
                          {"65535/udp", KelvarisSDK_PortProtocol_UDP, 65535},
                          {"80/tcpx", KelvarisSDK_PortProtocol_TCP, 80},
                          {"53/udp/tcp", KelvarisSDK_PortProtocol_UDP, 53}}) {
        auto const pair = readPortPair(c.word);
        ASSERT_TRUE(pair) << c.word;
        EXPECT_EQ(pair->protocol, c.protocol) << c.word;
        EXPECT_EQ(pair->port, c.port) << c.word;
    }
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
