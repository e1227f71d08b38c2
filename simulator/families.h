#pragma once

namespace kelvarissim {

class Registry;

void registerCore(Registry& registry);
void registerSafeBrowsing(Registry& registry);

} // namespace kelvarissim
