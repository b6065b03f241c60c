// Every public header of the library.
#ifndef ZELTOOLSINFRASTRUCTURE_H
#define ZELTOOLSINFRASTRUCTURE_H

#include "TAComponent.h"
#include "TADiagnostics.h"
#include "TAEnvironment.h"
#include "TAFileName.h"
#include "TAFileUtilities.h"
#include "TAIndex.h"
#include "TAIndexB.h"
#include "TAIndexI.h"
#include "TATextUtilities.h"
#include "ZELDirectory.h"
#include "ZELExport.h"
#include "ZELHashRWMap.h"
#include "ZELHashSCMap.h"
#include "ZELListPtr.h"
#include "ZELListVal.h"
#include "ZELListValZELString.h"
#include "ZELMap.h"
#include "ZELPlatformTypes.h"
#include "ZELRawColl.h"
#include "ZELStableSort.h"
#include "ZELStackTrace.h"
#include "ZELString.h"
#include "ZELStringPool.h"
#include "ZELThreads.h"
#include "ZELToken.h"
#include "ZELTrace.h"
#include "ZELUnicodeString.h"
#include "ZELXMLNode.h"

#endif
