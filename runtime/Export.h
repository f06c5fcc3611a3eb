#pragma once

#include <QtCore/qglobal.h>

#if defined(ZUVI_RUNTIME_LIBRARY)
#define ZUVI_RUNTIME_EXPORT Q_DECL_EXPORT
#else
#define ZUVI_RUNTIME_EXPORT Q_DECL_IMPORT
#endif
