// The statistics and the stream that carries them, the end of the last session, the tests of speed.

#include "jsonprinter.h"
#include "support/rows.h"
#include "support/sdk.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

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

Row connectionRow(std::vector<std::string> const& payloads, std::string const& out) {
    Reports reports;
    for (std::string const& payload : payloads) {
        reports.later.emplace_back(report("connection_stats", payload));
    }
    return row("stats 1", statsRun(reports), out);
}

// A connection's document, for reports that set only what is in question.
std::string connection(std::string const& members) {
    return changed(R"({"adapterID":"","connected":false,"connectionID":"","inFlight":0,"inFlightWindow":0,
        "jitterMs":0,"latencyMs":0,"localIp":"","lossReceive":0.0,"lossSend":0.0,"mos":0.0,"numberOfSockets":0,
        "privateIp":"","protocol":"auto","receiveBps":0,"receiveEstimateMbps":0.0,"remoteIp":"","sendBps":0,
        "sendEstimateMbps":0.0,"sleeping":false,"totalBps":0})",
                   members);
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

// The document of a stream, for reports that set only what is in question.
std::string stream(std::string const& members) {
    return changed(R"({"active":false,"averageDownloadSpeed":0.0,"averageUploadSpeed":0.0,
        "downloadSpeed":0.0,"duration":0,"failoverSaves":0,"groupId":0,"health":"stopped","id":0,"name":"",
        "redundantModeSaves":0,"speedModeSaves":0,"startTime":0,"uploadSpeed":0.0})",
                   members);
}

std::string const streamsDocument =
    R"({"bondingMode":"streaming","badLoss":true,"badLatency":false,"badCpu":true,"badMemory":false,
    "streams":[{"active":true,"duration":2,"id":3,"groupId":4,"startTime":18446744073709551615,
     "uploadSpeed":6.5,"downloadSpeed":7.5,"averageUploadSpeed":8.5,"averageDownloadSpeed":9.5,
     "redundantModeSaves":10,"speedModeSaves":11,"failoverSaves":12,"name":"n13","health":"poor"},)" +
    stream(R"({"health":"good"})") + "," + stream("{}") + "]}";

std::string streams(std::string const& mode, std::string const& elements) {
    return R"({"bondingMode":")" + mode +
           R"(","badLoss":false,"badLatency":false,"badCpu":false,"badMemory":false,"streams":[)" + elements +
           "]}";
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

} // namespace

TEST(Stats, EveryRecordFieldByField) {
    Reports reports;
    reports.state = {state(6)};
    reports.networks = {report("networks", "[]")};
    reports.connections = {report("connection_stats", connectionsReport)};
    reports.sessions = {report("session_stats", "{\"0\":" + periodReport + "}")};
    reports.streams = {report("streaming_stats", streamsReport)};
    reports.later = {report("streaming_stats", R"({"bonding_mode":"RD"})"), state(2)};
    runRows({row("stats 1 current day week month total",
                 statsRun(reports, R"({"enable":true,"periods":[0,24,168,720,4294967295]})"),
                 document("state", R"({"state":"CONNECTED"})") + document("adapters", "[]") +
                     document("connection_stats", connectionsDocument) +
                     document("session_stats", "{\"current\":" + periodDocument + "}") +
                     document("streaming_stats", streamsDocument) +
                     document("streaming_stats", streams("redundant", "")) +
                     document("state", R"({"state":"LOGGED_IN"})"))});
}

TEST(Stats, Shapes) {
    // A text that fills its field runs on into the next one, which is empty here.
    std::string const full = R"("guid":")" + std::string(100, 'g');
    std::string const adapter = R"({"adapterID":")" + std::string(100, 'g') + "\"}";
    std::string const tcp = connection(R"({"protocol":"tcp"})");
    std::string const udp = connection(R"({"protocol":"udp"})");
    std::string const https = connection(R"({"protocol":"https"})");
    std::string const none = zeroed(parsed(periodDocument)).toStyledString();
    Reports sessions;
    for (char const* periods : {R"({"0":{},"9":{},"24":{},"48":{},"100":{},"720":{}})", R"({"day":{}})",
                                R"({"12h":{},"-1":null})", "{}"}) {
        sessions.later.emplace_back(report("session_stats", periods));
    }
    Reports streaming;
    streaming.later = {report("streaming_stats",
                              R"({"bonding_mode":"SP","streams":[)" + series(12, R"({"name":"#"})") + "]}"),
                       report("streaming_stats", R"({"streams":[]})")};
    Row sessionRow =
        row("stats 1", statsRun(sessions),
            // five periods, in the order of their names
            document("session_stats", "{\"current\":" + none + ",\"100\":" + none + ",\"day\":" + none +
                                          ",\"48\":" + none + ",\"month\":" + none + "}") +
                document("session_stats", "{\"12\":" + none + ",\"total\":" + none + "}") +
                document("session_stats", "null"));
    sessionRow.err = errorInStream(unreadable);
    Row silence = row("stats 1 4294967295", statsRun({}, R"({"enable":true,"periods":[4294967295]})"), "");
    for (int i = 0; i < 5; ++i) {
        silence.err += errorInStream(timedOut);
    }
    runRowsInParallel({
        connectionRow({R"({"time":1,"connections":[)" + series(27, R"({"guid":"#"})") + "]}"},
                      connections("1", series(25, connection(R"({"adapterID":"#"})")))),
        connectionRow({R"({"time":2,"connections":[{)" + full + "more\"}]}"},
                      connections("2", connection(adapter))),
        // An unknown protocol leaves what stood in the slot.
        connectionRow({R"({"time":3,"connections":[{"protocol":"no"},{"protocol":"https"},{}]})",
                       R"({"time":4,"connections":[{"protocol":"udp"},{"protocol":null},{}]})",
                       R"({"time":5,"connections":[{"protocol":"TCP"}]})"},
                      connections("3", tcp + "," + https + "," + connection("{}")) +
                          connections("4", udp + "," + https + "," + connection("{}")) +
                          connections("5", udp)),
        connectionRow({R"({"connections":[{}]})", R"({"time":6})", "null", R"({"time":7,"connections":[]})"},
                      connections("0", "") + connections("0", "") + connections("0", "") +
                          connections("7", "")),
        row("stats 1", statsRun(streaming),
            document("streaming_stats", streams("speed", series(10, stream(R"({"name":"#"})")))) +
                document("streaming_stats", streams("speed", ""))),
        sessionRow,
        silence,
    });
}

TEST(Stats, Grammar) {
    std::vector<Row> rows;
    addRefusals(rows, {{"stats [duration in seconds] [current|day|week|month|total|<period in hours>] ...",
                        {},
                        {"stats -2", "stats 1.5", "stats 2147483648", "stats ''", "stats day", "stats 5 -1",
                         "stats 5 4294967296", "stats 5 Day", "stats 5 1h", "stats 5 0 24 168 720 1 2"}}});
    runRows(rows);
}

TEST(Stats, FullDiskEndsAnEndlessRun) {
    Reports reports;
    reports.later = {state(6)};
    ScriptedDaemon daemon(statsRun(reports));
    std::string const run = SDKCLI_PATH " -p " + std::to_string(daemon.port()) + " stats >/dev/full";
    Outcome const outcome = runProcess({.path = "/bin/sh", .argv = {"sh", "-c", run}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "sdkcli: can't write to standard output\n");
}

// The runner repeats the subscription within a tick, without periods; not again when it begins anew after a
// pause. The answers give it the time of two ticks in the pause and of two behind it.
TEST(Stats, SubscriptionAndItsRepeat) {
    Step ticks = asked("disconnect_reason",
                       R"({"disconnectReason":"SLEEP","sessionEnd":-5,"sessionLength":9007199254740993})");
    ticks.delayMs = 600;
    std::vector<Step> const script = {{"stat_subscribe", R"({"enable":true,"periods":[6,5,4,3,2]})"},
                                      {"stat_subscribe", R"({"enable":true})"},
                                      {"stat_subscribe", R"({"enable":false})"},
                                      ticks,
                                      {"stat_subscribe", R"({"enable":true,"periods":[6,5]})"},
                                      ticks};
    ScriptedDaemon daemon(script, noName);
    Sdk sdk(daemon);
    unsigned int periods[] = {6, 5, 4, 3, 2, 1};
    EXPECT_FALSE(sdk.enableStatUpdates(true, 6, periods).error);
    daemon.waitForRequest("stat_subscribe");
    daemon.waitForRequest("stat_subscribe");
    sdk.enableStatUpdates(false, 2, periods);
    KelvarisSDK_DisconnectEventResult const event = sdk.getLastDisconnectEvent(nullptr, nullptr);
    EXPECT_EQ(event.disconnectReason, KelvarisSDK_DisconnectReason_SLEEP);
    EXPECT_EQ(event.sessionEnd, -5);
    EXPECT_EQ(event.sessionLength, 9007199254740993);
    sdk.enableStatUpdates(true, 2, periods);
    sdk.getLastDisconnectEvent(nullptr, nullptr);
}

// A tick is 250 ms. Some ends come before the first tick begins, and a busy machine may hold up a few.
TEST(Stats, DestructionEndsATick) {
    ScriptedDaemon daemon({}, noName);
    std::vector<std::chrono::steady_clock::duration> times;
    for (std::size_t i = 1; i <= 20; ++i) {
        auto sdk = std::make_unique<Sdk>(daemon);
        daemon.waitForConnections(i);
        auto const start = std::chrono::steady_clock::now();
        sdk.reset();
        times.push_back(std::chrono::steady_clock::now() - start);
    }
    std::sort(times.begin(), times.end());
    EXPECT_LT(times[15], std::chrono::milliseconds(200));
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

    auto const shown = [](std::string const& payload, std::string const& reason) {
        return row("show disconnect", {asked("disconnect_reason", payload)},
                   styled(R"({"disconnectReason":")" + reason + "\"}"));
    };
    runRows({shown(R"({"disconnectReason":"SAFENETWORK","sessionEnd":1,"sessionLength":2})", "SAFENETWORK"),
             shown(R"({"disconnectReason":"CONNECTIVITY"})", "CONNECTIVITY"),
             shown(R"({"disconnectReason":"reboot"})", "UNKNOWN"), shown("null", "UNKNOWN")});
}

namespace {

Row testRow(std::string const& words, std::string const& request, std::string const& payload,
            std::string const& out, int delayMs = 0) {
    std::string const answer = report("speedtest_results", payload);
    return row(words, {{.request = request, .answers = {answer}, .delayMs = delayMs}}, styled(out));
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
    runRows({testRow("show speedtest", "request_speedtest_results", payload, list),
             testRow("show speedtest", "request_speedtest_results", "[]", "[]")});
}

// The newest test, and of several that are equally new the last; none when no time can be read. The daemon
// may take longer than the five seconds of other calls.
TEST(SpeedTests, Newest) {
    runRowsInParallel({
        testRow("speedtest words behind", "speedtest",
                R"([{"time":"1970-01-01T02:00:07","city":"first"},{"time":"1970-01-01T02:00:09","city":"new"},
                    {"time":"1970-01-01T02:00:09","city":"last new"},{"time":"?","city":"unreadable"}])",
                "[" + speedtest(9, "last new") + "]", 6000),
        testRow("streamtest words behind", "streamtest", R"([{"time":"1970-01-01T02:00:07","city":"only"}])",
                "[" + speedtest(7, "only") + "]", 6000),
        testRow("speedtest", "speedtest", R"([{"time":"1970-01-01","city":"a"},{"city":"b"}])", "[]"),
    });
}
