#pragma once

#include "httplibrary.h"
#include "loop.h"
#include "options.h"

#include <list>

namespace monitor {

constexpr char plainText[] = "text/plain; charset=utf-8"; // a body's type

struct HttpRequest {
    std::string path;
    std::string accept;
};

struct HttpReply {
    unsigned status = 200;
    std::string type; // of the body
    std::string body;
};

// Answers GET and HEAD in our loop. Clients that open connections and send or read nothing keep nobody else from an
// answer: those that have been idle for the longest time are cut off.
class HttpServer {
public:
    using Answer = std::function<HttpReply(HttpRequest const&)>;

    // Listens from then on; who connects waits for begin(). Throws when that can't be.
    HttpServer(Loop& loop, Endpoint const& endpoint, Answer answer);
    ~HttpServer();
    HttpServer(HttpServer const&) = delete;
    HttpServer& operator=(HttpServer const&) = delete;

    void begin();
    // "http://127.0.0.1:9339"
    std::string const& url() const {
        return address;
    }

private:
    struct Client {
        int socket;
        Clock::time_point lastAnswer; // or when it came
        bool isCutOff = false;
    };
    using Clients = std::list<Client>;

    static MHD_Result onRequest(void* self, MHD_Connection* connection, char const* url, char const* method,
                                char const* version, char const* upload, std::size_t* uploadSize,
                                void** seen);
    static void onConnection(void* self, MHD_Connection* connection, void** client,
                             MHD_ConnectionNotificationCode code);
    MHD_Result answerTo(MHD_Connection* connection, char const* url, bool isRead);
    void makeRoom();
    void work();

    Loop& loop;
    Microhttpd const& http = Microhttpd::get();
    Answer const answer;
    std::string address;
    Clients clients;
    MHD_Daemon* daemon = nullptr;
    Loop::Id watched = 0;
    Loop::Id timer = 0;
};

} // namespace monitor
