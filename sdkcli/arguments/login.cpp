// This is the grammar of logging in and out.

#include <cstring>

#include "actions.h"
#include "calls.h"
#include "prompt.h"
#include "readers.h"

namespace {

template <int Size> struct Secret {
    char text[Size] = {};

    Secret() = default;
    Secret(Secret const&) = delete;
    Secret& operator=(Secret const&) = delete;
    ~Secret() {
        explicit_bzero(text, Size);
    }
};

// Prompts for a secret of at most Size - 1 bytes, makes the call with it and wipes it, also when the call throws.
template <int Size, class Call> int withSecret(char const* prompt, Call call) {
    Secret<Size> secret;
    readPrivate(prompt, secret.text, Size);
    return call(secret.text);
}

int autoAction(int argc, char* /*argv*/[]) {
    return argc == 3 ? loginAutoAccount() : invalid(usage::loginAuto);
}

int oauthAction(int argc, char* argv[]) {
    if (argc > 4) {
        return invalid(usage::loginOAuth);
    }
    return argc == 4 ? loginOAuth(argv[3]) : withSecret<512>("Enter oauth token", loginOAuth);
}

constexpr Keyword loginWords[] = {
    {"auto", autoAction},
    {"oauth", oauthAction},
};

} // namespace

constinit Keywords const loginKeywords = loginWords;

int loginAction(int argc, char* argv[]) {
    if (argc == 2) {
        return missing(usage::login);
    }
    char const* const username = argv[2];
    if (Keyword const* const keyword = findKeyword(loginKeywords, username)) {
        return keyword->action(argc, argv);
    }
    if (argc > 4) {
        return invalid(usage::login);
    }
    if (argc == 4) {
        return requestLogin(username, argv[3]);
    }
    return withSecret<32>("Enter password",
                          [username](char const* password) { return requestLogin(username, password); });
}

int logoutAction(int argc, char* /*argv*/[]) {
    return noWordAction(argc, usage::logout, requestLogout);
}
