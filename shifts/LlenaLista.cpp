#include "shifts/LlenaLista.h"

#include "controls/Lista.h"
#include "core/Modulo.h"

#include <QProgressBar>

namespace zuvi {

void llenaLista(const QPointer<Ambiente> &ambiente, Lista *lista, QProgressBar *barra,
                const QString &cuenta, const QString &filas,
                const std::function<void(Recordset &)> &agrega)
{
    AccesoDatos *datos = modulo::accesoDatos();
    const QSqlDatabase conexion = modulo::requiere(ambiente)->Conexion();
    RecordsetPtr rs = datos->Consulta(cuenta, conexion, VTrue);
    const double total = datos->ValorNumerico(rs->value(0));
    rs = datos->Consulta(filas, conexion, VTrue);
    lista->limpia();
    if (total > 0)
        barra->setMaximum(int(total));
    int contador = 0;
    while (!rs->atEnd()) {
        Lista::avanzaBarra(barra, ++contador);
        agrega(*rs);
        Lista::dejaCorrerEventos();
        rs->moveNext();
    }
    barra->setValue(0);
}

} // namespace zuvi
