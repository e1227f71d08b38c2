// The statistics and the stream that carries them, the end of the last session, the tests of speed.

#include "jsonprinter.h"
#include "support/rows.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <sstream>

using namespace harness;

namespace {

// The daemon's test times are local: two hours east of Greenwich, in this process and in those it starts.
bool const eastOfGreenwich = setenv("TZ", "EST-2", 1) == 0;

std::string document(std::string const& tag, std::string const& json) {
    return "[\"" + tag + "\",\n" + styled(json) + "]\n\n";
}

std::string errorInStream(std::string const& error) {
    return "[\"error\",\n" + error + "]\n\n";
}

std::string report(std::string const& name, std::string const& payload) {
    return "[\"" + name + "\"," + payload + "]";
}

// A run of "stats" of a second or more: five requests, the subscription, its first repeat, which has no
// periods, and the end. The later reports come with the repeat.
struct Reports {
    std::vector<Answer> state, networks, connections, sessions, streams, later;
};

std::vector<Step> statsRun(Reports const& reports, std::string const& subscription = R"({"enable":true})") {
    return {{.request = "request_current_state", .answers = reports.state},
            {.request = "request_networks", .answers = reports.networks},
            {.request = "request_connection_stats", .answers = reports.connections},
            {.request = "request_session_stats", .answers = reports.sessions},
            {.request = "request_streaming_stats", .answers = reports.streams},
            {.request = "stat_subscribe", .payload = subscription},
            {.request = "stat_subscribe", .payload = R"({"enable":true})", .answers = reports.later},
            {.request = "stat_subscribe", .payload = R"({"enable":false})"}};
}

Row connectionRow(std::string const& name, std::vector<std::string> const& payloads, std::string const& out) {
    Reports reports;
    for (std::string const& payload : payloads) {
        reports.later.emplace_back(report("report_connection_stats", payload));
    }
    return {.name = name, .argv = {"stats", "1"}, .exchange = statsRun(reports), .out = out};
}

// `count` elements, each made of `element` with its number in the place of "#".
std::string list(int count, std::string const& element) {
    std::string text = "[";
    for (int i = 0; i < count; ++i) {
        std::size_t const place = element.find('#');
        text +=
            (i == 0 ? "" : ",") + element.substr(0, place) + std::to_string(i) + element.substr(place + 1);
    }
    return text + "]";
}

// A connection's document, for reports that set only what is in question.
std::string connection(std::string const& protocol, std::string const& inFlight = "0",
                       std::string const& adapterID = "") {
    return R"({"adapterID":")" + adapterID + R"(","connected":false,"connectionID":"","inFlight":)" +
           inFlight +
           R"(,"inFlightWindow":0,"jitterMs":0,"latencyMs":0,"localIp":"","lossReceive":0.0,"lossSend":0.0,
           "mos":0.0,"numberOfSockets":0,"privateIp":"","protocol":")" +
           protocol +
           R"(","receiveBps":0,"receiveEstimateMbps":0.0,"remoteIp":"","sendBps":0,"sendEstimateMbps":0.0,
           "sleeping":false,"totalBps":0})";
}

std::string connections(std::string const& time, std::string const& elements) {
    return document("connection_stats", "{\"time\":" + time + ",\"connections\":[" + elements + "]}");
}

std::string const connectionsReport = R"({"time":18446744073709551615,"connections":[
    {"bInF":9007199254740993,"bInFL":2,"cnnct":true,"zzz":-3,"guid":"g4","key":"k5","localIp":"l6","lsR":0.5,
     "lsS":0.25,"ltMs":9,"privateIp":"p10","protocol":"tcp-multi","numConns":-12,"remoteIp":"r13","totBps":14,
     "sndBps":15,"rcvBps":16,"sndEstMbps":17.5,"rcvEstMbps":18.5,"jtMs":-19,"mos":4.1}]})";

std::string const connectionsDocument = R"({"time":18446744073709551615,"connections":[
    {"inFlight":9007199254740993,"inFlightWindow":2,"connected":true,"sleeping":true,"adapterID":"g4",
     "connectionID":"k5","localIp":"l6","lossReceive":0.5,"lossSend":0.25,"latencyMs":9,"privateIp":"p10",
     "protocol":"tcp-multi","numberOfSockets":4294967284,"remoteIp":"r13","totalBps":14,"sendBps":15,
     "receiveBps":16,"sendEstimateMbps":17.5,"receiveEstimateMbps":18.5,"jitterMs":4294967277,
     "mos":4.0999999046325684}]})";

std::string const periodReport = R"({"bytes_recv":9007199254740993,"bytes_sent":2,"encrypted_bytes_recv":3,
    "encrypted_bytes_sent":4,"max_download_mbps":5.5,"max_upload_mbps":6.5,"days_since_first":7,
    "num_failovers":8,"num_sessions":9,"retrans_bytes":10,"session_start_time":11,
    "total_connected_minutes":12,
    "down_benefit":{"num_connections":2,"combined_mbps":20.5,"fastest_conn_mbps":7.25},
    "up_benefit":{"num_connections":0,"combined_mbps":20.5,"fastest_conn_mbps":7.25},
    "tun":{"packets_in":15,"packets_out":16,"bytes_in":-17,"bytes_out":18,"buffer_waits":19,
           "packet_waits":20,"read_queue":21,"dropped_incoming":22},
    "packet_handler":{"packets_in":23,"packets_out":24,"bytes_in":25,"bytes_out":26,"retries":27},
    "cp_benefit":{"cp_detect":28,"cp_success":29},
    "streaming":{"total_failover_saves":18446744073709551615,"total_speed_saves":31,
                 "total_redundant_saves":32,"total_streams":33,"unique_saves":34}})";

std::string const periodDocument = R"({"bytesReceived":9007199254740993,"bytesSent":2,
    "encryptedBytesReceived":3,"encryptedBytesSent":4,"maxDownloadSpeed":5.5,"maxUploadSpeed":6.5,
    "daysSinceFirst":7,"numFailovers":8,"numSessions":9,"retransBytes":10,"periodStartTime":11,
    "totalConnectedMinutes":12,"mbpsDownBenefit":13.25,"mbpsUpBenefit":0.0,
    "tun":{"packetsIn":15,"packetsOut":16,"bytesIn":18446744073709551599,"bytesOut":18,"bufferWaits":19,
           "packetWaits":20,"readQueue":21,"droppedIncoming":22},
    "packetHandler":{"packetsIn":23,"packetsOut":24,"bytesIn":25,"bytesOut":26,"retries":27},
    "captivePortal":{"detections":28,"successes":29},
    "streaming":{"totalFailoverSaves":18446744073709551615,"totalSpeedModeSaves":31,
                 "totalRedundantModeSaves":32,"totalStreams":33,"uniqueSaves":34}})";

std::string const streamsReport = R"({"bonding_mode":"STR","badLoss":true,"badLatency":false,"badCpu":true,
    "badMemory":false,"streams":[
    {"active":true,"duration":2,"id":3,"group_id":4,"start_time":18446744073709551615,"upload_speed":6.5,
     "download_speed":7.5,"average_upload_speed":8.5,"average_download_speed":9.5,"redundant_saves":10,
     "speed_saves":11,"failover_saves":12,"name":"n13","health":1},
    {"health":2},{"health":3}]})";

// A stream of which only the health, or not even that, was reported.
std::string stream(std::string const& health, std::string const& id = "0") {
    return R"({"active":false,"averageDownloadSpeed":0.0,"averageUploadSpeed":0.0,"downloadSpeed":0.0,
               "duration":0,"failoverSaves":0,"groupId":0,"health":")" +
           health + R"(","id":)" + id +
           R"(,"name":"","redundantModeSaves":0,"speedModeSaves":0,"startTime":0,"uploadSpeed":0.0})";
}

std::string const streamsDocument =
    R"({"bondingMode":"streaming","badLoss":true,"badLatency":false,"badCpu":true,"badMemory":false,
    "streams":[{"active":true,"duration":2,"id":3,"groupId":4,"startTime":18446744073709551615,
     "uploadSpeed":6.5,"downloadSpeed":7.5,"averageUploadSpeed":8.5,"averageDownloadSpeed":9.5,
     "redundantModeSaves":10,"speedModeSaves":11,"failoverSaves":12,"name":"n13","health":"poor"},)" +
    stream("good") + "," + stream("stopped") + "]}";

std::string noStreams(std::string const& mode, std::string const& streams = "[]") {
    return R"({"bondingMode":")" + mode +
           R"(","badLoss":false,"badLatency":false,"badCpu":false,"badMemory":false,"streams":)" + streams +
           "}";
}

// The same document with nothing counted.
Json::Value zeroed(Json::Value document) {
    if (!document.isObject()) {
        return document.type() == Json::realValue ? Json::Value(0.0) : Json::Value(0);
    }
    for (Json::Value& member : document) {
        member = zeroed(member);
    }
    return document;
}

KelvarisSDK_Handle* connectTo(uint16_t port) {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    settings.port = port;
    return KelvarisSDK_CreateWithSettings(settings);
}

std::string const timeoutError = errorDocument(3841, "Timeout waiting for result", "Timeout");
std::string const unreadable = errorDocument(3840, "An error in the SDK", "Error from SDK");

} // namespace

TEST(Stats, EveryRecordFieldByField) {
    Reports reports;
    reports.state = {report("report_current_state", R"({"state":6})")};
    reports.networks = {report("report_networks", "[]")};
    reports.connections = {report("report_connection_stats", connectionsReport)};
    reports.sessions = {report("report_session_stats", "{\"0\":" + periodReport + "}")};
    reports.streams = {report("report_streaming_stats", streamsReport)};
    reports.later = {report("report_streaming_stats", R"({"bonding_mode":"RD"})"),
                     report("report_current_state", R"({"state":2})")};
    runRows({{.name = "all",
              .argv = {"stats", "1", "current", "day", "week", "month", "total"},
              .exchange = statsRun(reports, R"({"enable":true,"periods":[0,24,168,720,4294967295]})"),
              .out = document("state", R"({"state":"CONNECTED"})") + document("adapters", "[]") +
                     document("connection_stats", connectionsDocument) +
                     document("session_stats", "{\"current\":" + periodDocument + "}") +
                     document("streaming_stats", streamsDocument) +
                     document("streaming_stats", noStreams("redundant")) +
                     document("state", R"({"state":"LOGGED_IN"})")}});
}

TEST(Stats, Connections) {
    std::string twentyFive;
    for (int i = 0; i < 25; ++i) {
        twentyFive += (i == 0 ? "" : ",") + connection("auto", std::to_string(i));
    }
    // A text that fills its field runs on into the next one, which is empty here.
    std::string const full(100, 'g');
    runRowsInParallel({
        connectionRow("25 at most", {R"({"time":1,"connections":)" + list(27, R"({"bInF":#})") + "}"},
                      connections("1", twentyFive)),
        connectionRow("a full field",
                      {R"({"time":2,"connections":[{"protocol":"udp","guid":")" + full + "more\"}]}"},
                      connections("2", connection("udp", "0", full))),
        connectionRow(
            "what stood in the slot",
            {R"({"time":3,"connections":[{"protocol":"no"},{"protocol":"https"},{}]})",
             R"({"time":4,"connections":[{"protocol":"udp"},{"protocol":null},{}]})",
             R"({"time":5,"connections":[{"protocol":"TCP"}]})"},
            connections("3", connection("tcp") + "," + connection("https") + "," + connection("auto")) +
                connections("4", connection("udp") + "," + connection("https") + "," + connection("auto")) +
                connections("5", connection("udp"))),
        connectionRow(
            "nothing", {R"({"connections":[{}]})", R"({"time":6})", "null", R"({"time":7,"connections":[]})"},
            connections("0", "") + connections("0", "") + connections("0", "") + connections("7", "")),
    });
}

TEST(Stats, SessionsAndStreams) {
    std::string const none = zeroed(parsed(periodDocument)).toStyledString();
    std::string tenStreams;
    for (int i = 0; i < 10; ++i) {
        tenStreams += (i == 0 ? "" : ",") + stream("stopped", std::to_string(i));
    }
    Reports sessions;
    sessions.later = {report("report_session_stats", R"({"0":{},"9":{},"24":{},"48":{},"100":{},"720":{}})"),
                      report("report_session_stats", R"({"day":{}})"),
                      report("report_session_stats", R"({"12h":{},"-1":null})"),
                      report("report_session_stats", "{}")};
    Reports streams;
    streams.later = {report("report_streaming_stats",
                            R"({"bonding_mode":"SP","streams":)" + list(12, R"({"id":#})") + "}"),
                     report("report_streaming_stats", R"({"streams":[]})")};
    runRowsInParallel({
        {.name = "five periods, in the order of their names",
         .argv = {"stats", "1"},
         .exchange = statsRun(sessions),
         .out = document("session_stats", "{\"current\":" + none + ",\"100\":" + none + ",\"day\":" + none +
                                              ",\"48\":" + none + ",\"month\":" + none + "}") +
                document("session_stats", "{\"12\":" + none + ",\"total\":" + none + "}") +
                document("session_stats", "null"),
         .err = errorInStream(unreadable)},
        {.name = "ten streams",
         .argv = {"stats", "1"},
         .exchange = statsRun(streams),
         .out = document("streaming_stats", noStreams("speed", "[" + tenStreams + "]")) +
                document("streaming_stats", noStreams("speed"))},
        {.name = "nobody answers",
         .argv = {"stats", "1", "4294967295"},
         .exchange = statsRun({}, R"({"enable":true,"periods":[4294967295]})"),
         .err = errorInStream(timeoutError) + errorInStream(timeoutError) + errorInStream(timeoutError) +
                errorInStream(timeoutError) + errorInStream(timeoutError)},
    });
}

TEST(Stats, Grammar) {
    std::vector<Row> rows;
    for (std::string const words : {"-2", "1.5", "2147483648", "", "day", "5 -1", "5 4294967296", "5 Day",
                                    "5 1h", "5 0 24 168 720 1 2"}) {
        std::vector<std::string> argv = {"stats"};
        std::istringstream stream(words);
        std::copy(std::istream_iterator<std::string>(stream), {}, std::back_inserter(argv));
        if (words.empty()) {
            argv.emplace_back();
        }
        rows.push_back(
            {.name = words,
             .argv = argv,
             .err =
                 invalid("stats [duration in seconds] [current|day|week|month|total|<period in hours>] ..."),
             .status = 2});
    }
    runRows(rows);
}

TEST(Stats, FullDiskEndsAnEndlessRun) {
    Reports reports;
    reports.later = {report("report_current_state", R"({"state":6})")};
    ScriptedDaemon daemon(statsRun(reports));
    std::string const run = SDKCLI_PATH " -p " + std::to_string(daemon.port()) + " stats >/dev/full";
    Outcome const outcome = runProcess({.path = "/bin/sh", .argv = {"sh", "-c", run}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "sdkcli: can't write to standard output\n");
}

// The runner repeats the subscription within a tick, without periods; not again when it begins anew after a
// pause. The answers give it the time of two ticks in the pause and of two behind it.
TEST(Stats, SubscriptionAndItsRepeat) {
    Step const ticks = {
        .request = "request_disconnect_reason",
        .answers = {report(
            "report_disconnect_reason",
            R"({"disconnectReason":"SLEEP","sessionEnd":-5,"sessionLength":9007199254740993})")},
        .delayMs = 600};
    std::vector<Step> const script = {
        {.request = "stat_subscribe", .payload = R"({"enable":true,"periods":[6,5,4,3,2]})"},
        {.request = "stat_subscribe", .payload = R"({"enable":true})"},
        {.request = "stat_subscribe", .payload = R"({"enable":false})"},
        ticks,
        {.request = "stat_subscribe", .payload = R"({"enable":true,"periods":[6,5]})"},
        ticks};
    ScriptedDaemon daemon(script, {.appName = std::nullopt});
    KelvarisSDK_Handle* const sdk = connectTo(daemon.port());
    unsigned int const periods[] = {6, 5, 4, 3, 2, 1};
    EXPECT_FALSE(KelvarisSDK_EnableStatUpdates(sdk, true, 6, periods).error);
    daemon.waitForRequest("stat_subscribe");
    daemon.waitForRequest("stat_subscribe");
    KelvarisSDK_EnableStatUpdates(sdk, false, 2, periods);
    KelvarisSDK_DisconnectEventResult const event = KelvarisSDK_GetLastDisconnectEvent(sdk, nullptr, nullptr);
    EXPECT_EQ(event.disconnectReason, KelvarisSDK_DisconnectReason_SLEEP);
    EXPECT_EQ(event.sessionEnd, -5);
    EXPECT_EQ(event.sessionLength, 9007199254740993);
    KelvarisSDK_EnableStatUpdates(sdk, true, 2, periods);
    KelvarisSDK_GetLastDisconnectEvent(sdk, nullptr, nullptr);
    KelvarisSDK_Destroy(sdk);
}

// Twenty ticks would be five seconds.
TEST(Stats, DestructionEndsATick) {
    ScriptedDaemon daemon({}, {.appName = std::nullopt});
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        KelvarisSDK_Handle* const sdk = connectTo(daemon.port());
        daemon.waitForConnections(static_cast<std::size_t>(i) + 1);
        KelvarisSDK_Destroy(sdk);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST(Stats, BriefForm) {
    auto const result = std::make_unique<KelvarisSDK_ConnectionStatsResult>();
    result->stats.connectionCount = 1;
    testing::internal::CaptureStdout();
    printConnectionStatsResult(*result, true);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              styled(R"({"time":0,"connections":[{"inFlight":0,"inFlightWindow":0,"connected":false,
                         "sleeping":false,"adapterID":"","connectionID":"","lossReceive":0.0,"lossSend":0.0,
                         "latencyMs":0,"totalBps":0}]})"));
}

TEST(Disconnect, Reasons) {
    std::string texts;
    for (uint32_t number = 0; number <= 17; ++number) {
        texts += KelvarisSDK_DisconnectReason_toString(static_cast<KelvarisSDK_DisconnectReason>(number));
        texts += ' ';
    }
    EXPECT_EQ(texts, "UNKNOWN CONNECTIVITY AIRPLANE REBOOT UPDATE CRASH SLEEP USERINITIATED TORRENT "
                     "SERVICESTOP STARTTIMEOUT INACTIVETIMEOUT SETTINGCHANGERECONNECT DNSTIMEOUT "
                     "TUNNELTIMEOUT OVERQUOTA SAFENETWORK UNKNOWN ");

    auto const row = [](std::string const& payload, std::string const& reason) {
        return Row{.name = payload,
                   .argv = {"show", "disconnect"},
                   .exchange = {{.request = "request_disconnect_reason",
                                 .answers = {report("report_disconnect_reason", payload)}}},
                   .out = styled(R"({"disconnectReason":")" + reason + "\"}")};
    };
    runRows({row(R"({"disconnectReason":"SAFENETWORK","sessionEnd":1,"sessionLength":2})", "SAFENETWORK"),
             row(R"({"disconnectReason":"CONNECTIVITY"})", "CONNECTIVITY"),
             row(R"({"disconnectReason":"reboot"})", "UNKNOWN"), row("null", "UNKNOWN")});
}

namespace {

Row testRow(std::string const& name, std::vector<std::string> const& argv, std::string const& request,
            std::string const& payload, std::string const& out, int delayMs = 0) {
    return {.name = name,
            .argv = argv,
            .exchange = {{.request = request,
                          .answers = {report("report_speedtest_results", payload)},
                          .delayMs = delayMs}},
            .out = styled(out)};
}

// A test of speed as it is printed, told from others by its time and its city.
std::string speedtest(int64_t time, std::string const& city) {
    return R"({"city":")" + city + R"(","country":"","downloadSpeed":0.0,"isError":false,"latency":0,
               "numConnections":0,"time":)" +
           std::to_string(time) + R"(,"type":"speed","uploadSpeed":0.0})";
}

} // namespace

TEST(SpeedTests, List) {
    // A full resolution runs on into the rate behind it: 49 is "1" in memory.
    std::string const payload = R"([
        {"time":"1970-01-01T02:00:01Z","country":"c2","city":"c3","num_connections":65540,"download":5.5,
         "upload":6.5,"error":false,"msg":"m8","type":2,"resolution":"1920x1080","fps":49,"jitter":65548,
         "latency":65549,"loss":14.5},
        {"time":"1970-01-02T02:00:00","error":true,"msg":"no server","type":1,"latency":3,"download":1.5},
        {"time":"1970-01-01","city":"date only","type":1,"resolution":"r","fps":1},
        {"time":"1970-01-01T02:00:","city":"no seconds"},
        {"time":"1970-01-01T01:59:59","city":"before the epoch"},
        {"time":"1970-01-01T03:00:00","city":"sixth"},
        {"time":"1970-01-01T03:00:00","city":"seventh"}])";
    std::string const list =
        R"([{"time":1,"country":"c2","city":"c3","numConnections":4,"downloadSpeed":5.5,"uploadSpeed":6.5,
             "isError":false,"type":"streaming","resolution":"1920x11","fps":49,"jitter":12,"latency":13,
             "loss":14.5},
            {"time":86400,"country":"","city":"","numConnections":0,"isError":true,"errorMessage":"no server",
             "type":"speed","latency":3},)" +
        speedtest(0, "date only") + "," + speedtest(0, "no seconds") + "," +
        speedtest(0, "before the epoch") + "]";
    runRows({testRow("five", {"show", "speedtest"}, "request_speedtest_results", payload, list),
             testRow("none", {"show", "speedtest"}, "request_speedtest_results", "[]", "[]")});
}

// The newest test, and of several that are equally new the last; none when no time can be read. The daemon
// may take longer than the five seconds of other calls.
TEST(SpeedTests, Newest) {
    runRowsInParallel({
        testRow("newest", {"speedtest", "words", "behind"}, "speedtest",
                R"([{"time":"1970-01-01T02:00:07","city":"first"},{"time":"1970-01-01T02:00:09","city":"new"},
                    {"time":"1970-01-01T02:00:09","city":"last new"},{"time":"?","city":"unreadable"}])",
                "[" + speedtest(9, "last new") + "]", 6000),
        testRow("stream", {"streamtest", "words", "behind"}, "streamtest",
                R"([{"time":"1970-01-01T02:00:07","city":"only"}])", "[" + speedtest(7, "only") + "]", 6000),
        testRow("no time", {"speedtest"}, "speedtest", R"([{"time":"1970-01-01","city":"a"},{"city":"b"}])",
                "[]"),
    });
}
