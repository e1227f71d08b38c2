// The grammar of logging in and out.

#include <cstddef>
#include <cstring>

#include "../arguments.h"
#include "../calls.h"
#include "actions.h"
#include "readers.h"

namespace {

// Prompts for a secret of at most Size - 1 bytes, makes the call with it and wipes it.
template <std::size_t Size, class Call> int withSecret(char const* prompt, Call call) {
    char secret[Size];
    readPrivate(prompt, secret, Size);
    int const status = call(secret);
    explicit_bzero(secret, Size);
    return status;
}

} // namespace

int loginAction(int argc, char* argv[]) {
    char const* const usage = "login <username> [password]";
    if (argc == 2) {
        return missing(usage);
    }
    char const* const username = argv[2];
    if (is(username, "auto")) {
        return argc == 3 ? loginAutoAccount() : invalid("login auto");
    }
    if (is(username, "oauth")) {
        if (argc > 4) {
            return invalid("login oauth [access token]");
        }
        return argc == 4 ? loginOAuth(argv[3]) : withSecret<512>("Enter oauth token", loginOAuth);
    }
    if (argc > 4) {
        return invalid(usage);
    }
    if (argc == 4) {
        return requestLogin(username, argv[3]);
    }
    return withSecret<32>("Enter password",
                          [username](char const* password) { return requestLogin(username, password); });
}

int logoutAction(int argc) {
    return argc == 2 ? requestLogout() : invalid("logout");
}
