#pragma once

// Document numbering: one counter per key in the table `folios`.
//
// siguienteFolio never hands out the same number twice for one key, whatever
// the number of processes and stations drawing at once: on SQLite the read
// and the increment run in one immediate (write-locked) transaction, retried
// while another writer holds the lock; on MariaDB a single atomic statement
// increments the row and leaves the new value in LAST_INSERT_ID() of this
// connection. A key seen for the first time starts at 1, or just above the
// highest number already in use for the keys "Op" (op.op) and "oppart"
// (oppart.id_entrada), so a database filled by hand keeps working.
//
// Keys compare without regard to case.

#include <QSqlDatabase>
#include <QString>

namespace zuvi::anfitrion {

qint32 siguienteFolio(const QSqlDatabase &db, const QString &clave);

} // namespace zuvi::anfitrion
