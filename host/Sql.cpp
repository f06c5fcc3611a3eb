#include "host/Sql.h"

#include "runtime/Error.h"

#include <QFile>
#include <QSqlError>

namespace zuvi::anfitrion {

namespace {

struct Traza
{
    QString archivo;
    QFile file;
};

Traza &estado()
{
    static Traza t;
    return t;
}

[[noreturn]] void falla(const QSqlQuery &q, const QString &sql)
{
    const QSqlError e = q.lastError();
    QString texto = e.databaseText().trimmed();
    if (texto.isEmpty())
        texto = e.text().trimmed();
    if (texto.isEmpty())
        texto = QStringLiteral("error desconocido");
    throw Error(QStringLiteral("Error de base de datos: %1 [%2]").arg(texto, sql),
                e.nativeErrorCode().toInt());
}

QSqlQuery prepara(const QSqlDatabase &db, const QString &sql)
{
    if (!db.isOpen())
        throw Error(QStringLiteral("No hay conexión abierta con la base de datos."));
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql))
        falla(q, sql);
    return q;
}

} // namespace

QSqlQuery ejecuta(const QSqlDatabase &db, const QString &sql)
{
    traza(sql);
    QSqlQuery q = prepara(db, sql);
    if (!q.exec())
        falla(q, sql);
    return q;
}

QSqlQuery ejecutaConValores(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                            const QString &textoTraza)
{
    traza(textoTraza);
    QSqlQuery q = prepara(db, sql);
    for (int i = 0; i < valores.size(); ++i)
        q.bindValue(i, valores.at(i));
    if (!q.exec())
        falla(q, textoTraza);
    return q;
}

void ponTraza(const QString &archivo)
{
    Traza &t = estado();
    t.file.close();
    t.archivo = archivo;
    if (archivo.isEmpty())
        return;
    t.file.setFileName(archivo);
    if (!t.file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        throw Error(QStringLiteral("No se puede abrir el archivo de traza \"%1\": %2")
                        .arg(archivo, t.file.errorString()));
}

QString archivoTraza()
{
    return estado().archivo;
}

void traza(const QString &sentencia)
{
    Traza &t = estado();
    if (!t.file.isOpen())
        return;
    QString linea = sentencia;
    linea.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
    t.file.write(linea.toUtf8());
    t.file.write("\n");
    t.file.flush();
}

} // namespace zuvi::anfitrion
