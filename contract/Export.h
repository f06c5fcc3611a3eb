#pragma once

#include <QtCore/qglobal.h>

#if defined(ZUVI_CONTRATO_LIBRARY)
#define ZUVI_CONTRATO_EXPORT Q_DECL_EXPORT
#else
#define ZUVI_CONTRATO_EXPORT Q_DECL_IMPORT
#endif
