// Every public header of the library.
#ifndef ZELTOOLSINFRASTRUCTURE_H
#define ZELTOOLSINFRASTRUCTURE_H

#include "TADiagnostics.h"
#include "TAEnvironment.h"
#include "TAFileName.h"
#include "TAFileUtilities.h"
#include "TAIndex.h"
#include "TAIndexB.h"
#include "TAIndexI.h"
#include "TATextUtilities.h"
#include "TAUnicodeRegularExpression.h"
#include "ZELDirectory.h"
#include "ZELExport.h"
#include "ZELListPtr.h"
#include "ZELListVal.h"
#include "ZELListValZELString.h"
#include "ZELPlatformTypes.h"
#include "ZELRawColl.h"
#include "ZELStableSort.h"
#include "ZELStackTrace.h"
#include "ZELString.h"
#include "ZELThreads.h"
#include "ZELToken.h"
#include "ZELTrace.h"
#include "ZELUnicodeString.h"
#include "ZELXMLNode.h"

#endif
