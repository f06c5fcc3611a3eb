#pragma once

// The shift windows fill their lists the same way: count the rows first so the
// progress bar knows its end, then add one list item per row while the bar
// advances and the window stays responsive.

#include "runtime/Recordset.h"

#include <QPointer>
#include <QString>

#include <functional>

class QProgressBar;

namespace zuvi {

class Ambiente;
class Lista;

// Runs `cuenta` (a COUNT) and `filas`, empties `lista` and calls `agrega` for
// every row of `filas`. The bar is reset to 0 at the end.
void llenaLista(const QPointer<Ambiente> &ambiente, Lista *lista, QProgressBar *barra,
                const QString &cuenta, const QString &filas,
                const std::function<void(Recordset &)> &agrega);

} // namespace zuvi
