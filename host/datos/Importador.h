#pragma once

// The import's inner workings, shared by its reading and checking half
// (Importacion.cpp) and its writing half (Escritura.cpp).

#include "host/datos/Csv.h"
#include "host/datos/Importacion.h"
#include "host/sql/Sql.h"

#include <QHash>
#include <QSet>

namespace zuvi::anfitrion::datos::detalle {

inline QString normal(const QVariant &v)
{
    return v.toString().trimmed().toCaseFolded();
}

inline QSet<QString> clavesDe(const QSqlDatabase &db, const QString &sql)
{
    QSet<QString> s;
    for (RecordsetPtr r = consulta(db, sql); !r->atEnd(); r->moveNext()) {
        QStringList partes;
        for (int i = 0; i < r->fieldCount(); ++i)
            partes << normal(r->value(i));
        s.insert(partes.join(u'\x1f'));
    }
    return s;
}

inline QSet<QString> clavesCatalogo(const QSqlDatabase &db, const QString &nombre)
{
    const Catalogo *c = catalogo(nombre);
    return clavesDe(db, QStringLiteral("SELECT %1 FROM %2").arg(c->claves().join(u','), c->tabla));
}

// One row as checked: its line and the values of the file's columns.
struct Fila
{
    int linea = 0;
    QVariantList valores;
    QString clave; // the normalized key
};

class Importador
{
public:
    Importador(const QSqlDatabase &db, const Catalogo &c, const Avance &avance)
        : m_db(db), m_cat(c), m_motor(motorDe(db)), m_avance(avance),
          m_kits(c.nombre == QLatin1String("kits"))
    {
    }

    ResultadoImportacion corre(const QByteArray &bytes, bool simula);

private:
    void rechaza(int linea, int columna, const QString &motivo)
    {
        m_r.rechazos.push_back(
            {linea, columna < 0 ? QString() : m_encabezado.at(columna).trimmed(), motivo});
    }
    void avanza(const QString &fase, qint64 hecho, qint64 total) const
    {
        if (m_avance && (hecho % 1000 == 0 || hecho == total))
            m_avance(fase, hecho, total);
    }
    bool leeEncabezado(const ArchivoCsv &a);
    void revisa(const FilaCsv &f);
    void revisaKit(const Fila &f, int linea);
    void escribe();
    void escribeKits();
    void guarda(const QString &tabla, const QList<int> &columnas, const Fila &f, bool existe);
    QSet<QString> alcanzables(const QHash<QString, QStringList> &grafo, const QString &desde) const;
    void revisaDespues();
    int indice(const QString &columna) const
    {
        for (int i = 0; i < m_columnas.size(); ++i)
            if (m_columnas.at(i)->nombre.compare(columna, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }

    QSqlDatabase m_db;
    const Catalogo &m_cat;
    Motor m_motor;
    Avance m_avance;
    bool m_kits = false;
    ResultadoImportacion m_r;
    bool m_comaDecimal = false;
    QStringList m_encabezado;
    QList<const Columna *> m_columnas; // one per column of the file
    QSet<QString> m_existentes;
    QHash<QString, QSet<QString>> m_referidos; // by catalogue name
    QHash<QString, int> m_lineaDeClave;
    QHash<QString, QVariant> m_minimoDeKit; // kits: the yield the file gives
    QHash<QString, int> m_lineaDeKit;
    std::vector<Fila> m_filas;
};

} // namespace zuvi::anfitrion::datos::detalle
