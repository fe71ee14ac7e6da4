// Fault reporting: an unhandled fault goes to the platform's reporter.
#pragma once

#include "zcmod/Export.h"

// Installs the library's unhandled-exception filter, which hands the fault to "ReportFault" of
// %windir%\System32\FaultRep.dll. Returns 1.
ZCMOD_EXTERN_C ZCMOD_API int DkhInitializeWER();
