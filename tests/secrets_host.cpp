// A host that logs in with what it reads from standard input, and keeps no copy of that. Once the call's answer is there
// it prints a line and waits for its end. Usage: PORT CALL, the call also behind "dropped ", which ends the handle at once.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <kelvarissdk/csdkinterface.h>
#include <string_view>
#include <unistd.h>

namespace {

using Call = void (*)(KelvarisSDK_Handle*, char const* secret, KelvarisSDK_StateCallback);

struct Named {
    std::string_view name;
    Call call;
};

constexpr Named calls[] = {
    {"password",
     [](KelvarisSDK_Handle* sdk, char const* secret, KelvarisSDK_StateCallback callback) {
         KelvarisSDK_Login(sdk, "me", secret, callback, nullptr);
     }},
    {"token",
     [](KelvarisSDK_Handle* sdk, char const* secret, KelvarisSDK_StateCallback callback) {
         KelvarisSDK_LoginOAuth(sdk, secret, callback, nullptr);
     }},
    {"config",
     [](KelvarisSDK_Handle* sdk, char const* secret, KelvarisSDK_StateCallback /*callback*/) {
         KelvarisSDK_InitSafeBrowsing(sdk, secret, nullptr, nullptr);
     }},
    {"refresh",
     [](KelvarisSDK_Handle* sdk, char const* secret, KelvarisSDK_StateCallback /*callback*/) {
         KelvarisSDK_RefreshSafeBrowsingToken(sdk, secret, nullptr, nullptr);
     }},
};

bool ignore(KelvarisSDK_StateResult /*result*/, void* /*userData*/) {
    return false;
}

char secret[8192];

} // namespace

int main(int /*argc*/, char* argv[]) {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    settings.port = static_cast<unsigned short>(std::atoi(argv[1]));
    KelvarisSDK_Handle* const sdk = KelvarisSDK_CreateWithSettings(settings);
    bool const dropped = argv[3] != nullptr;
    if (read(STDIN_FILENO, secret, sizeof(secret) - 1) <= 0) {
        return 1;
    }
    for (Named const& named : calls) {
        if (named.name == argv[2]) {
            named.call(sdk, secret, dropped ? ignore : nullptr);
        }
    }
    explicit_bzero(secret, sizeof(secret));
    if (dropped) {
        KelvarisSDK_Destroy(sdk);
    }
    std::puts("returned");
    std::fflush(stdout);
    pause();
    return 0;
}
