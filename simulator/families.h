#pragma once

namespace kelvarissim {

class Registry;

void registerCore(Registry& registry);

} // namespace kelvarissim
