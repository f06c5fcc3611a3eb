#pragma once

// The language of the program: a Spanish locale set before any window is made
// and Qt's own texts (standard buttons, calendars, print and file dialogs,
// context menus) translated from the distribution's files, with ours for the
// few texts those lack.

#include <QLocale>
#include <QString>

namespace zuvi::app {

// The locale asked for on the command line (--idioma), else in ZUVI_IDIOMA,
// else Spanish of Mexico, whose currency the data use. Throws Error when the
// name is not that of a Spanish locale (es, es_ES, es_MX.UTF-8...).
QLocale eligeIdioma(const QString &pedido);

// Makes it the default locale and installs the translators on the running
// application. Returns false, after saying so on standard error, when Qt's
// Spanish files are missing: the program still works, with Qt's texts in
// English.
bool instalaIdioma(const QLocale &local);

} // namespace zuvi::app
