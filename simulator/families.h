#pragma once

namespace kelvarissim {

class Registry;

void registerCore(Registry& registry);
void registerTrafficLists(Registry& registry);

} // namespace kelvarissim
