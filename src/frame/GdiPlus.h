// GDI+ for the controls that draw with its flat API: started on first use, once per process (never from the
// library's entry), and ended by ZCMOD_Finalize.
#pragma once

namespace zcmod {

// Starts GDI+ if it isn't running; true when it runs. Call it on the thread that draws, before any flat call.
bool EnsureGdiPlus();

// Ends GDI+ if this library started it; a later EnsureGdiPlus starts it again.
void ShutdownGdiPlus();

}  // namespace zcmod
