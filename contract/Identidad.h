#pragma once

// The published identity of the library, of the interface _Produccion and of
// the class Produccion. Assigned once; never change them: hosts bind to them.
#define ZUVI_LIBRARY_NAME "ZuviProduccion"
#define ZUVI_LIBRARY_ID "{6C1E8F3A-2B47-4D59-9E0C-7A35B1D2E864}"
#define ZUVI_INTERFACE_NAME "_Produccion"
#define ZUVI_INTERFACE_ID "{A9D4C2E1-5F38-4B6A-8C17-0E2F9B3D5A71}"
#define ZUVI_CLASS_NAME "Produccion"
#define ZUVI_CLASS_ID "{3F7B9D15-C8E2-4A06-B9D3-61E4F0A8C257}"
#define ZUVI_PROG_ID "ZuviProduccion.Produccion"
// The host environment library that the type of Ambiente comes from.
#define ZUVI_ENVIRONMENT_LIBRARY "ZuviEnviroment"
