// ZCMOD: the shared user-interface and phone-access library of the Desk Hub suite. Include this header to
// get the whole interface.
#pragma once

#include "zcmod/CommonModuleState.h"
#include "zcmod/DKHLInfoReader.h"
#include "zcmod/FaultReporting.h"
#include "zcmod/NBitmapUtil.h"
#include "zcmod/PhoneFileDialog.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/Utils.h"
#include "zcmod/VuikBackBuffer.h"
#include "zcmod/VuikBaseSkin.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikButtonImpl.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikMessages.h"
#include "zcmod/VuikResourceManager.h"
#include "zcmod/VuikTooltip.h"
#include "zcmod/VuikWindow.h"
#include "zcmod/VuikWindowImpl.h"
