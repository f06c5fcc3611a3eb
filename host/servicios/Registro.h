#pragma once

// The host's classes the component creates by name.

namespace zuvi::anfitrion {

// Hands the class registry the host's implementation of every service the
// component creates by name: the explicit list in Registro.cpp. The
// executable and the test fixtures call it at start-up; calling it again
// puts the same classes back.
void registraClasesAnfitrion();

} // namespace zuvi::anfitrion
