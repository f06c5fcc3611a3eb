#pragma once

#include <QtCore/qglobal.h>

#if defined(ZUVI_PRODUCCION_LIBRARY)
#define ZUVI_PRODUCCION_EXPORT Q_DECL_EXPORT
#else
#define ZUVI_PRODUCCION_EXPORT Q_DECL_IMPORT
#endif
