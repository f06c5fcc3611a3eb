#pragma once

#include <QtCore/qglobal.h>

#if defined(ZUVI_CONTROLES_LIBRARY)
#define ZUVI_CONTROLES_EXPORT Q_DECL_EXPORT
#else
#define ZUVI_CONTROLES_EXPORT Q_DECL_IMPORT
#endif
