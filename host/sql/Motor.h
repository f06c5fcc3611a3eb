#pragma once

// The database engines the host speaks to. The statement path, the schema
// and the session all tell them apart by this.

namespace zuvi::anfitrion {

enum class Motor { SQLite, MariaDB };

} // namespace zuvi::anfitrion
