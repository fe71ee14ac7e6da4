// The suite's four fonts, registered from the graphics module on first use.
#pragma once

namespace zcmod {

// Registers the fonts at most once per process; the flag is never cleared.
void RegisterSkinFonts();

// Removes each registration that is not empty, in the order of the slots. The slots and the flag stay as
// they are, so a second call removes the same handles again.
void RemoveSkinFonts();

}  // namespace zcmod
