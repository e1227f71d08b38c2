#pragma once

namespace kelvarissim {

class Registry;

void registerCore(Registry& registry);
void registerSafeBrowsing(Registry& registry);
void registerSettings(Registry& registry);
void registerAdapters(Registry& registry);
void registerSession(Registry& registry);
void registerDirectorySettings(Registry& registry);
void registerTelemetry(Registry& registry);

} // namespace kelvarissim
