/*
 * What families share, and the first calls.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_TYPES_HPP
#define KELVARISSDK_CPP_TYPES_HPP

#include <kelvarissdk/cpp/call.hpp>

namespace kelvaris {

/** State of the daemon's session. */
enum class State : std::uint32_t {
    LOGGED_OUT,
    LOGGING_IN,
    LOGGED_IN,
    AUTO_CONNECTING,
    CONNECTING,
    DISCONNECTING,
    CONNECTED,
    OVERLIMIT,
    UNKNOWN,
};

/** How the daemon uses several adapters at once. */
enum class BondingMode : std::uint32_t { SPEED, REDUNDANT, STREAMING, UNKNOWN = 0xFFFFFFFF };

/** How the tunnel's packets travel. */
enum class TransportMode : std::uint32_t { TCP, UDP, AUTO, HTTPS, TCP_MULTI, UNKNOWN = 0xFFFFFFFF };

/** The protocol of a port. */
enum class PortProtocol : std::uint32_t { TCP, UDP, UNKNOWN = 0xFFFFFFFF };

/** The text of the C interface for each; for UNKNOWN it is the one that stands there for any other number. */
inline char const* toString(State value) {
    return KelvarisSDK_State_toString(detail::passed(value));
}
inline char const* toString(BondingMode value) {
    return KelvarisSDK_BondingMode_toString(detail::passed(value));
}
inline char const* toString(TransportMode value) {
    return KelvarisSDK_TransportMode_toString(detail::passed(value));
}
inline char const* toString(PortProtocol value) {
    return KelvarisSDK_PortProtocol_toString(detail::passed(value));
}

/** The session's state. */
struct StateResult {
    using Record = KelvarisSDK_StateResult;
    State state = State::UNKNOWN;

    static StateResult from(Record const& record) {
        return {detail::known(record.state, State::UNKNOWN)};
    }
};

/** The daemon's version. */
struct VersionResult {
    using Record = KelvarisSDK_VersionResult;
    std::uint16_t maj = 0;
    std::uint16_t min = 0;
    std::uint16_t bug = 0;
    std::uint16_t build = 0;

    static VersionResult from(Record const& record) {
        return {record.maj, record.min, record.bug, record.build};
    }
};

/** A port of a protocol. */
struct ProtocolPortPair {
    PortProtocol protocol = PortProtocol::TCP;
    std::uint16_t port = 0;

    static ProtocolPortPair from(KelvarisSDK_ProtocolPortPair const& pair) {
        return {detail::known(pair.protocol, PortProtocol::UDP), pair.port};
    }
};

namespace detail {

inline std::vector<KelvarisSDK_ProtocolPortPair> plainPorts(std::vector<ProtocolPortPair> const& ports) {
    std::vector<KelvarisSDK_ProtocolPortPair> plain;
    plain.reserve(ports.size());
    for (ProtocolPortPair const& pair : ports) {
        plain.push_back({passed(pair.protocol), pair.port});
    }
    return plain;
}

} // namespace detail

/** The first calls. A call has the name, the arguments and the outcome of its function in the C interface. */
class FirstCalls : protected detail::Caller {
public:
    StreamCall<StateResult> getState() const {
        return stream<StateResult, KelvarisSDK_GetState>();
    }
    Call<VersionResult> getVersion() const {
        return call<VersionResult, KelvarisSDK_GetVersion>();
    }
    Call<Done> daemonExit() const {
        return {core, atOnce,
                [](KelvarisSDK_Handle* handle, auto, void*) { return KelvarisSDK_DaemonExit(handle); }};
    }

protected:
    using detail::Caller::Caller;

    static constexpr detail::Traits atOnce{false, false, 0}; // waits for nothing
};

} // namespace kelvaris

#endif
