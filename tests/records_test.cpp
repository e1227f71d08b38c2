// Programs are compiled with the places of the fields: a record keeps its layout as long as the SONAME stays.

#include <array>
#include <cstddef>
#include <kelvarissdk/csdkinterface.h>

namespace {

// A record's layout: the offset of each field in its order, then the size.
template <typename... Number> constexpr auto layout(Number... numbers) {
    return std::array{static_cast<size_t>(numbers)...};
}

using Base = KelvarisSDK_BaseResult;
static_assert(layout(offsetof(Base, error), offsetof(Base, errorCode), offsetof(Base, errorMessage),
                     offsetof(Base, callbackId), sizeof(Base)) == layout(0, 4, 8, 208, 216));

using Settings = KelvarisSDK_CreateSettings;
static_assert(layout(offsetof(Settings, appName), offsetof(Settings, address), offsetof(Settings, port),
                     sizeof(Settings)) == layout(0, 32, 78, 80));

using Version = KelvarisSDK_VersionResult;
static_assert(layout(offsetof(Version, base), offsetof(Version, maj), offsetof(Version, min),
                     offsetof(Version, bug), offsetof(Version, build),
                     sizeof(Version)) == layout(0, 216, 218, 220, 222, 224));

using State = KelvarisSDK_StateResult;
static_assert(layout(offsetof(State, base), offsetof(State, state), sizeof(State)) == layout(0, 216, 224));

using PortPair = KelvarisSDK_ProtocolPortPair;
static_assert(layout(offsetof(PortPair, protocol), offsetof(PortPair, port), sizeof(PortPair)) ==
              layout(0, 4, 8));

} // namespace
