#pragma once

// The demo data: a small shop with articles, kits, orders and shifts.

#include "host/sql/Motor.h"

#include <QSqlDatabase>

namespace zuvi::anfitrion {

// The shop the demo database shows (described in host/base/Demo.cpp).
void insertaDemo(const QSqlDatabase &db, Motor motor);

} // namespace zuvi::anfitrion
